#pragma once

// The unit-test executables are linked with --wrap for the factories of the
// atom-tag container and for some file-system calls, so a test can make them
// fail as a device short of memory, or a memory card, would.
namespace faults {

void FailDecoderCreation(bool fail);
void FailEncoderCreation(bool fail);
// Decoders and encoders that offer decode() and append() alone, as a host's
// own container might: the library must then give the same results.
void PlainContainer(bool plain);

// File systems without hard links (the FAT family of memory cards): link()
// fails with EPERM, and with `noExclusiveRename` renameat2() does not know
// RENAME_NOREPLACE either (EINVAL).
void NoHardLinks(bool noLinks, bool noExclusiveRename = false);

// Every rename() sleeps this long first, widening the moment a kill can hit.
void SlowRename(unsigned microseconds);

// Calls of access() since the last reset: the library's probes for names.
void ResetAccessCount();
unsigned long AccessCount();

}  // namespace faults

