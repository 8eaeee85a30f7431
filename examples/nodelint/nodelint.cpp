// ondrel-nodelint: what is wrong with node files, one complaint and a hint at a time. Exit status: 0 nothing, 1 some
// complaint, 2 the command line made no sense or a file could not be read.

#include "checks.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <cstdio>

namespace
{

const char* const kHelp =
    "usage: ondrel-nodelint FILE...\n"
    "\n"
    "Reports what keeps node files from loading, and what the library passes over in them without\n"
    "a word: file, line, column, the complaint, and a hint below it.\n"
    "\n"
    "Exit status: 0 no complaint, 1 some complaint, 2 wrong usage or a file that cannot be read.\n";

// The text as the library reads it: UTF-8, up to the first zero byte.
QString decoded(Report& report, const QByteArray& bytes)
{
    const int end = bytes.indexOf('\0');
    QString text = QString::fromUtf8(bytes.constData(), end < 0 ? bytes.size() : end);
    if (end >= 0)
        addWarning(report, SourceMap(text).positionAt(text.size()), "nothing is read from the zero byte on",
                   "is this a text file?");
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0)
        addWarning(report, Position(), "the file is not in UTF-8", "other characters are lost: save it in UTF-8");
    return text;
}

void print(const QString& file, const Report& report)
{
    for (const Complaint& complaint : report)
        std::printf("%s:%d:%d: %s: %s\n  hint: %s\n", qUtf8Printable(file), complaint.position.line,
                    complaint.position.column, complaint.severity == Complaint::Error ? "error" : "warning",
                    qUtf8Printable(complaint.text), qUtf8Printable(complaint.hint));
}

int lint(const QString& name)
{
    QFile file(name);
    if (!QFileInfo(name).isFile() || !file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: cannot be read\n", qUtf8Printable(name));
        return 2;
    }
    Report report;
    checkFileName(report, QFileInfo(name).fileName());
    const QString text = decoded(report, file.readAll());
    const Report found = lintNodeFile(text);
    report.insert(report.end(), found.begin(), found.end());
    print(name, report);
    return report.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.contains("--help") || arguments.contains("-h")) {
        std::fputs(kHelp, stdout);
        return 0;
    }
    bool understood = !arguments.isEmpty();
    for (const QString& argument : arguments)
        understood = understood && !argument.startsWith('-');
    if (!understood) {
        std::fputs(kHelp, stderr);
        return 2;
    }
    int status = 0;
    for (const QString& file : arguments)
        status = std::max(status, lint(file));
    return status;
}
