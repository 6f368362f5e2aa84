// The language of the driver's own dialogs, for this process only.
#ifndef TESSARY_PRINTCTL_DIALOG_LANGUAGE_H
#define TESSARY_PRINTCTL_DIALOG_LANGUAGE_H

#include "tools/printctl/config_library.h"

#include <filesystem>
#include <string>

namespace tsypr::printctl
{

// Loads the driver's UI library so that its dialogs are in another language than the user's, and keeps it loaded. The
// driver chooses its language library once, when it is loaded, by the user's display language, and neither Windows nor
// the driver lets a process have its own. So for the moment of loading the driver finds the wanted library under the
// names of all of them, in a folder and with registry settings of this process. What Windows itself writes, such as OK
// and Cancel, remains in the user's language.
class DialogLanguage
{
public:
    // driver: the UI library as the spooler loads it. tag: an installed language such as "de-de", in any letter case.
    // A Failure with ExitCode::NotFound that lists the installed languages when it is none of them, and one with
    // ExitCode::System when the driver did not take it.
    DialogLanguage(const std::filesystem::path& driver, const std::string& tag);
    ~DialogLanguage();
    DialogLanguage(const DialogLanguage&) = delete;
    DialogLanguage& operator=(const DialogLanguage&) = delete;

private:
    std::filesystem::path m_folder;
    LibraryHandle m_driver;
};

} // namespace tsypr::printctl

#endif
