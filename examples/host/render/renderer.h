#pragma once

#include "options.h"
#include "plan.h"
#include "report.h"

// Makes the pictures of a plan, `options.jobs` at once, as far as the memory allows. `stop` is a word that becomes 1,
// even by a signal handler, when the run is to end soon. Every picture is a matter of its own: what else is made, where
// and in which order, changes nothing in it.
void render(const Plan& plan, const Host::NodeTypes& types, const Options& options, const int& stop, Report& report);
