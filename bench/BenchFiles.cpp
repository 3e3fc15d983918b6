#include "BenchFiles.h"

#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <map>
#include <random>
#include <tuple>

#include "Coordinate.h"

namespace bench {
namespace {

struct CartellaTemporanea {
  std::string path;
  CartellaTemporanea() {
    const char* base = getenv("TMPDIR");
    std::string pattern = std::string(base != nullptr && *base != '\0' ? base : "/tmp") +
                          "/vektkk-bench-XXXXXX";
    if (mkdtemp(&pattern[0]) == nullptr) abort();
    path = pattern + "/";
  }
  ~CartellaTemporanea() {
    const std::string cmd = "rm -rf '" + path + "'";
    if (system(cmd.c_str()) != 0) {
    }
  }
};

// Eight base-36 characters from a number, as the library's names are.
std::string Nome(unsigned n) {
  std::string nome = "0k000000";
  for (size_t i = nome.size(); i-- > 2; n /= 36) nome[i] = "0123456789abcdefghijklmnopqrstuvwxyz"[n % 36];
  return nome;
}

}  // namespace

const std::string& Cartella() {
  static CartellaTemporanea cartella;
  return cartella.path;
}

const TrackSalvato& Track(int punti, int varianti, size_t logoBytes) {
  static std::map<std::tuple<int, int, size_t>, TrackSalvato> salvati;
  const auto chiave = std::make_tuple(punti, varianti, logoBytes);
  auto it = salvati.find(chiave);
  if (it != salvati.end()) return it->second;

  std::mt19937 rng(7);
  TrackSalvato s;
  s.track.reset(IFileTkk::CreateMe(false, false));
  _STagInfoFileTKK info;
  memcpy(info.NamexSito, "Autodromo", 9);
  s.track->SetTagInfoFile("", info);
  uint16_t logo = 0xFFFF;
  if (logoBytes > 0) {
    std::vector<unsigned char> image(logoBytes);
    for (auto& b : image) b = static_cast<unsigned char>(rng());
    logo = s.track->AddTagDatiLogo(image, "logo.png");
  }
  const uint16_t fondi = s.track->AddDatiFondoStradale({FONDO_PAVED});
  for (int v = 0; v < varianti; ++v) {
    std::vector<_t_s_lla_i> shape(static_cast<size_t>(punti));
    for (auto& p : shape)
      p = {static_cast<int32_t>(rng()), static_cast<int32_t>(rng()),
           static_cast<int32_t>(rng() % 100000)};
    _STagIndexesVarianteTKK idx;
    idx.IdxPunti = s.track->AddTagDatiPuntiTracciato(shape);
    idx.IdxFondiStradali = fondi;
    idx.IdxLogo = logo;
    _STagInfoVarianteTKK_fw fw;
    memcpy(fw.NationCode, "ITA", 4);
    fw.Guid.Valore = 0x0000123456780001ull + static_cast<unsigned>(v);
    if (!s.track->AddTagInfoVariante("GP", "GP", fw, idx)) abort();
  }
  s.nome = Nome(static_cast<unsigned>(salvati.size()) + 1);
  s.path = Cartella() + s.nome + ".tkk";
  if (s.track->SalvaFileInPath(Cartella(), &s.nome) != s.nome) abort();
  struct stat st;
  if (stat(s.path.c_str(), &st) != 0) abort();
  s.bytes = static_cast<size_t>(st.st_size);
  return salvati.emplace(chiave, std::move(s)).first->second;
}

bool LetturaNuda(const std::string& path, size_t bytes) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st;
  bool ok = fstat(fd, &st) == 0 && static_cast<size_t>(st.st_size) == bytes;
  if (ok) {
    std::unique_ptr<unsigned char[]> buffer(new unsigned char[bytes]);
    size_t letti = 0;
    while (letti < bytes) {
      const ssize_t n = read(fd, buffer.get() + letti, bytes - letti);
      if (n <= 0) break;
      letti += static_cast<size_t>(n);
    }
    benchmark::DoNotOptimize(buffer.get());
    ok = letti == bytes;
  }
  close(fd);
  return ok;
}

bool ScritturaNuda(const std::string& path, const std::vector<unsigned char>& bytes) {
  const std::string temp = path + ".tmp";
  const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  size_t fatti = 0;
  while (fatti < bytes.size()) {
    const ssize_t n = write(fd, bytes.data() + fatti, bytes.size() - fatti);
    if (n <= 0) break;
    fatti += static_cast<size_t>(n);
  }
  bool ok = fatti == bytes.size() && fsync(fd) == 0;
  ok = close(fd) == 0 && ok;
  ok = ok && rename(temp.c_str(), path.c_str()) == 0;
  const std::string dir = path.substr(0, path.find_last_of('/') + 1);
  const int dfd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ok = ok && dfd >= 0 && fsync(dfd) == 0;
  if (dfd >= 0) close(dfd);
  return ok;
}

namespace {
double Ora() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}
long FaultsMinori() {
  rusage r;
  getrusage(RUSAGE_SELF, &r);
  return r.ru_minflt;
}
}  // namespace

void Misura::Inizia() {
  faultsInizio_ = FaultsMinori();
  inizio_ = Ora();
}

void Misura::Ferma() {
  secondi_ += Ora() - inizio_;
  faults_ += FaultsMinori() - faultsInizio_;
}

void Riporta(benchmark::State& state, const Misura& libreria, const Misura& nuda) {
  const double n = static_cast<double>(state.iterations());
  if (n == 0) return;
  state.counters["lib_us"] = libreria.Secondi() / n * 1e6;
  state.counters["bare_us"] = nuda.Secondi() / n * 1e6;
  state.counters["ratio"] = nuda.Secondi() > 0 ? libreria.Secondi() / nuda.Secondi() : 0;
  state.counters["lib_flt"] = static_cast<double>(libreria.Faults()) / n;
  state.counters["bare_flt"] = static_cast<double>(nuda.Faults()) / n;
}

}  // namespace bench
