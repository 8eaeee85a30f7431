#pragma once

#include <ondrel/ondrel_export.h>

#include <QString>

namespace Ondrel
{

// Whether elements are nested deeper than the limit, which QDomDocument would take stack for, level by level. Of text
// that is not well-formed at least what stands before the first error counts; with a document type, such text counts as
// nested too deep where it has the entities or the tags for it.
ONDREL_EXPORT bool nestedDeeperThan(const QString& xml, int limit);

} // namespace Ondrel
