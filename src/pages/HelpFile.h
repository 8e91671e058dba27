// HelpFile.h: the help buttons of the windows, which all open the same help file.
#pragma once

namespace orvex {

// Has the shell open ovshelp.chm of the program folder with the verb "Open", if it is there.
void OpenHelpFile();

}  // namespace orvex
