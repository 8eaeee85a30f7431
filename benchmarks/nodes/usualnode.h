#pragma once

#include <QString>

namespace OndrelBench
{

// The text of a node as most are: an input, a preview, six sliders and two combo boxes.
inline QString usualNode()
{
    QString inputs = QStringLiteral("<i name='source'/><i type='preview'/>");
    for (int i = 0; i < 6; ++i)
        inputs += QStringLiteral("<i name='s%1' type='slider' min='0' max='100' value='%1'>Slider %1</i>").arg(i);
    for (int i = 0; i < 2; ++i)
        inputs += QStringLiteral("<i name='c%1' type='combobox' choices='Normal,Multiply,Screen'>Choice %1</i>").arg(i);
    return QStringLiteral("<node><input>") + inputs +
           QStringLiteral("</input><output><o name='image'>Image</o></output></node>");
}

} // namespace OndrelBench
