#include "foundation/SistemaFile.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <atomic>

namespace vektkk {
namespace sys {
namespace {

int ApriReale(const char* path, int flags, mode_t mode) { return open(path, flags, mode); }
int RinominaSenzaSostituire(const char* from, const char* to) {
  return renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
}

const Chiamate kReali = {ApriReale, read,  readv, writev, fsync, close, rename,
                         RinominaSenzaSostituire, link, unlink};

std::atomic<const Chiamate*> g_tabella{&kReali};

}  // namespace

const Chiamate& Sistema() { return *g_tabella.load(std::memory_order_relaxed); }
const Chiamate& SistemaReale() { return kReali; }
void ImpostaSistema(const Chiamate* t) { g_tabella.store(t != nullptr ? t : &kReali); }

}  // namespace sys
}  // namespace vektkk
