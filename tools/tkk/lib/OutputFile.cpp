#include "OutputFile.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#include "BadInput.h"

namespace tkk {

void WriteFileAtomically(const std::string& path, const std::string& content) {
  std::vector<char> temp(path.begin(), path.end());
  const std::string suffix = ".tmp-XXXXXX";
  temp.insert(temp.end(), suffix.begin(), suffix.end());
  temp.push_back('\0');
  const int fd = mkstemp(temp.data());
  if (fd < 0) throw BadInput(path + ": cannot write (" + strerror(errno) + ")");
  // mkstemp makes the file private; give it the permissions of any new file.
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(fd, 0666 & ~mask);
  size_t done = 0;
  while (done < content.size()) {
    const ssize_t n = write(fd, content.data() + done, content.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  const bool written = done == content.size() && fsync(fd) == 0;
  const int error = errno;
  if (close(fd) != 0 || !written || rename(temp.data(), path.c_str()) != 0) {
    const int why = written ? errno : error;
    unlink(temp.data());
    throw BadInput(path + ": cannot write (" + strerror(why) + ")");
  }
}

}  // namespace tkk
