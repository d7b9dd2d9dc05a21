// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/fileFilter.h"

#include <QStringList>

#include <strandview/formats/formats.h>

#include "session/sessionFile.h"

namespace strandview {

QString fileFilter()
{
    QStringList endings;
    for (const Format& format : formats())
        endings.append(QString::fromStdString(endingsOf(format, "*")));
    endings.append(QString("*") + SESSION_ENDING);
    return QString("Configurations (%1);;All files (*)").arg(endings.join(" "));
}

} // namespace strandview
