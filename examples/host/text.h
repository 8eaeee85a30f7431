#pragma once

#include <QCoreApplication>

namespace Host
{

// The core's sentences for the user, all of them in one context for translators: Text::tr("..."). Any thread.
struct Text {
    Q_DECLARE_TR_FUNCTIONS(Host)
};

} // namespace Host
