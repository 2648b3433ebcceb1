#ifndef MDF_TOOLS_VIEWING_BROWSER_H_
#define MDF_TOOLS_VIEWING_BROWSER_H_

#include <string>

namespace mdf_tools {

/// Opens an address in the user's browser, where there is a display, and does not wait for it.
void openBrowser(const std::string& address);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_BROWSER_H_
