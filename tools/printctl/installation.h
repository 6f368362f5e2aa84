// Carries an installation plan out, or takes everything back.
#ifndef TESSARY_PRINTCTL_INSTALLATION_H
#define TESSARY_PRINTCTL_INSTALLATION_H

#include "tools/printctl/install_plan.h"

#include <string>

namespace tsypr::printctl
{

// Installs or updates the driver, its files, settings and printers. Returns what was done, in lines of text. Throws
// Failure after a step that failed; whatever this call had changed is as before then.
std::string Install(const InstallPlan& plan);

} // namespace tsypr::printctl

#endif
