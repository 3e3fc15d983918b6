#include "FuzzFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <zlib.h>

namespace fuzz {

namespace {

std::string g_dir;

void RemoveDir() {
  EmptyDir();
  rmdir(g_dir.c_str());
}

uint32_t GetLe32(const unsigned char* p) {
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
         static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

}  // namespace

const std::string& Dir() {
  if (g_dir.empty()) {
    const char* env = getenv("TMPDIR");
    std::string base = env != nullptr && *env != '\0' ? env
                       : access("/dev/shm", W_OK) == 0 ? "/dev/shm"
                                                       : "/tmp";
    std::string pattern = base + "/vektkk-fuzz-XXXXXX";
    if (mkdtemp(&pattern[0]) == nullptr) abort();
    g_dir = pattern + "/";
    atexit(RemoveDir);
  }
  return g_dir;
}

void EmptyDir() {
  DIR* d = opendir(Dir().c_str());
  if (d == nullptr) return;
  while (const dirent* e = readdir(d)) {
    if (strcmp(e->d_name, ".") != 0 && strcmp(e->d_name, "..") != 0)
      unlink((g_dir + e->d_name).c_str());
  }
  closedir(d);
}

bool WriteFile(const std::string& path, const unsigned char* data, size_t size) {
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  size_t done = 0;
  while (done < size) {
    const ssize_t n = write(fd, data + done, size - done);
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  return close(fd) == 0 && done == size;
}

Bytes ReadFile(const std::string& path) {
  Bytes b;
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return b;
  unsigned char buf[16384];
  ssize_t n;
  while ((n = read(fd, buf, sizeof buf)) > 0) b.insert(b.end(), buf, buf + n);
  close(fd);
  return b;
}

bool FixCrcs(Bytes& b) {
  constexpr size_t kHeader = 8;
  constexpr size_t kFooter = 4;
  bool namesSafe = true;
  size_t p = 0;
  while (b.size() - p >= kHeader + kFooter) {
    const size_t size = GetLe32(&b[p + 4]);
    if (size > b.size() - p - kHeader - kFooter) break;
    unsigned char* payload = &b[p + kHeader];
    if (memcmp(&b[p], "lgo\0", 4) == 0) {
      const void* zero = memchr(payload, 0, size);
      const size_t nameLength =
          zero ? static_cast<size_t>(static_cast<const unsigned char*>(zero) - payload) : size;
      if (memchr(payload, '/', nameLength) != nullptr) namesSafe = false;
    }
    uLong crc = crc32(0L, &b[p], static_cast<uInt>(kHeader + size));
    for (int i = 0; i < 4; ++i) payload[size + i] = static_cast<unsigned char>(crc >> (8 * i));
    p += kHeader + size + kFooter;
  }
  return namesSafe;
}

}  // namespace fuzz
