#pragma once

// The container's factories and some file-system calls, made to fail as a
// device short of memory, or a memory card, would (support/Wrappers.cpp).
namespace faults {

void FailDecoderCreation(bool fail);
// Coders that offer decode() and append() alone, as a host's own container
// might: the library must then give the same results.
void PlainContainer(bool plain);
// File systems without hard links (memory cards): link() fails with EPERM, and
// with `noExclusiveRename` renameat2() does not know RENAME_NOREPLACE (EINVAL).
void NoHardLinks(bool noLinks, bool noExclusiveRename = false);
void SlowRename(unsigned microseconds);  // every rename() sleeps this long first
// Calls of access() since the last reset (a call with `reset` starts the
// count again): the library's probes for names.
unsigned long AccessCount(bool reset = false);

}  // namespace faults
