// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/fileFilter.h"

#include <QStringList>

#include <strandview/formats/formats.h>

namespace strandview {

QString fileFilter()
{
    QStringList endings;
    for (const Format& format : formats())
        endings.append(QString::fromStdString(endingsOf(format, "*")));
    return QString("Configurations (%1);;All files (*)").arg(endings.join(" "));
}

} // namespace strandview
