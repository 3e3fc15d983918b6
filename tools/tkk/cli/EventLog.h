#ifndef VEKTKK_TOOLS_TKK_CLI_EVENTLOG_H
#define VEKTKK_TOOLS_TKK_CLI_EVENTLOG_H

namespace tkk {

// Opens the library's event log so that its reports appear on stderr, one
// line each. Until then the library reports nothing.
void OpenEventLog();

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_CLI_EVENTLOG_H
