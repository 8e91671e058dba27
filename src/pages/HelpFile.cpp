// HelpFile.cpp: opening the help file.
#include "pages/HelpFile.h"

#include <string>

#include "core/AppState.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"

namespace orvex {

void OpenHelpFile() {
    constexpr int kShowNormal = 1;
    const std::string help = App().AppPath + "\\ovshelp.chm";
    if (platform::FileHelper().FileExists(help))
        platform::Sys().shellExecute("Open", help, "", kShowNormal);
}

}  // namespace orvex
