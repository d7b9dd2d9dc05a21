// SPDX-License-Identifier: GPL-3.0-or-later
#include <algebra3d/Matrix3.h>
#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

namespace algebra3d {

template class Vector3<double>;
template class Quaternion<double>;
template class Matrix3<double>;

} // namespace algebra3d
