#pragma once

#include "report.h"
#include "sourcenode.h"

#include <QMap>
#include <QString>
#include <QStringList>

// The checks of the parts of a node file. Each adds what it finds to the report.

// Every complaint about the text of a node file, by position.
Report lintNodeFile(const QString& text);

// The name of a node file, without its folder: whether PluginNodes looks for such a name.
void checkFileName(Report& report, const QString& fileName);

// Attributes that nobody reads. `owner` says whose they are: "an output".
void checkAttributes(Report& report, const SourceNode& node, const QStringList& known, const QString& owner);

// Names in use, with the places where they were given.
using Names = QMap<QString, Position>;

void checkOutput(Report& report, const SourceNode& entry, Names& names);

// `insideFieldSet`: among the fields of a set, where no further sets may stand.
void checkInput(Report& report, const SourceNode& entry, Names& names, bool insideFieldSet);

void checkComboBox(Report& report, const SourceNode& entry);
void checkFieldSets(Report& report, const SourceNode& entry, Names& names);
void checkSlider(Report& report, const SourceNode& entry);
void checkRangeSlider(Report& report, const SourceNode& entry);
void checkColor(Report& report, const SourceNode& entry);

// Whether the attribute, if there is one, has one of these words.
void checkWord(Report& report, const SourceNode& entry, const QString& attribute, const QStringList& words,
               const QString& otherwise);

// "a comment", for what is no element.
QString kindName(const SourceNode& node);
