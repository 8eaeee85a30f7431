#pragma once

#include <QString>
#include <QStringList>

// What may stand in node files.

// All values of the attribute "type"; the first is the empty one of a plain input.
const QStringList& fieldTypes();

// The attributes that an input entry of this type reads, those for documentation included.
QStringList attributesOf(const QString& fieldType);

// The attributes of the root element, which are for documentation.
const QStringList& rootAttributes();

// A hint where a known attribute belongs; empty for an unknown one.
QString placeOf(const QString& attribute);

// "a plain input", or "a field of type "slider""
QString described(const QString& fieldType);

// "x", "x" or "y", "x", "y" or "z"
QString alternatives(const QStringList& words);

// The word that was meant, if one of them is written much like it.
QString nearest(const QString& word, const QStringList& words);

// A hint that names the nearest word, or all of them.
QString suggestion(const QString& word, const QStringList& words);
