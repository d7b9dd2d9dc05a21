// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/runProgram.h"

#include <QProcess>
#include <QTemporaryDir>

ProgramRun runProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::string& input,
                      const std::vector<std::pair<std::string, std::string>>& environment)
{
    QProcess process;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.remove("DISPLAY");
    const QTemporaryDir settings; // the user's own say nothing about what is tested
    variables.insert("XDG_CONFIG_HOME", settings.path());
    for (const auto& [name, value] : environment)
        variables.insert(QString::fromStdString(name), QString::fromStdString(value));
    process.setProcessEnvironment(variables);
    QStringList list;
    for (const std::string& argument : arguments)
        list << QString::fromStdString(argument);

    process.start(QString::fromStdString(program), list);
    process.write(QByteArray::fromStdString(input));
    process.closeWriteChannel();
    const bool ended = process.waitForFinished(240000);
    const bool normally = ended && process.exitStatus() == QProcess::NormalExit;
    return {normally ? process.exitCode() : -1, process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}
