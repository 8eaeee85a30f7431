#pragma once

#include <QStringList>

class QCommandLineParser;

namespace Host
{

// What ondrel-editor may be called with, with texts for --help in the user's language.
void addOptions(QCommandLineParser& parser);

// Why the arguments make no sense; empty if they do, and the parser has them.
QString parseArguments(QCommandLineParser& parser, const QStringList& arguments);

} // namespace Host
