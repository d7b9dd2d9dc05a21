// SPDX-License-Identifier: GPL-3.0-or-later
#include <MeshVisitor.h>

MeshVisitor::~MeshVisitor() = default;

MeshCaps::~MeshCaps() = default;
