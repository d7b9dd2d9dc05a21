// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef BIARC_PKFMANIP_H
#define BIARC_PKFMANIP_H

#include <biarc/biarcExport.h>

/// The common base of curves.
class BIARC_EXPORT PKFmanip
{
public:
    PKFmanip();
    virtual ~PKFmanip();
};

#endif
