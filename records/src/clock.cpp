#include "velqua/records/clock.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "velqua/records/common.h"

namespace velqua_records {
namespace {

// The partner of a value in the pairs (0, 1), (2, 3) ...: always a neighbour,
// so a pair never straddles a multiple of 100 (a year's century), nor 12
// (an hour's half of the day).
int32_t Partner(int32_t v) { return v ^ 1; }

// An instant that differs from `now` in every component, in the same century
// and the same half of the day, and still a valid date.
FechaHora ProbeFor(const FechaHora& now) {
  FechaHora p = now;
  p.intAnio = Partner(now.intAnio);
  p.intMes = Partner(now.intMes - 1) + 1;
  p.intDia = now.intDia >= 31 ? 30 : Partner(now.intDia - 1) + 1;
  p.intHora = Partner(now.intHora);
  p.intMinuto = Partner(now.intMinuto);
  p.intSegundo = Partner(now.intSegundo);
  return p;
}

// A kept file's bytes, read as a file.
class KeptReader : public velqua::LectorArchivo {
 public:
  explicit KeptReader(std::shared_ptr<const std::string> bytes) : bytes_(std::move(bytes)) {}
  std::size_t Lee(char* out, std::size_t max) override {
    const std::size_t n = std::min(max, bytes_->size() - at_);
    std::memcpy(out, bytes_->data() + at_, n);
    at_ += n;
    return n;
  }

 private:
  std::shared_ptr<const std::string> bytes_;
  std::size_t at_ = 0;
};

// The step of one time component between two readings whose seconds and
// minutes each moved by -1, 0 or +1: the remainder of `diff` by `unit`,
// taken as -1, 0 or +1.
int64_t Step(int64_t diff, int64_t unit) {
  const int64_t r = ((diff % unit) + unit) % unit;
  return r == 0 ? 0 : r == 1 ? 1 : -1;
}

}  // namespace

struct ProgramClock::Kept {
  std::u16string name;
  struct stat st;
  std::shared_ptr<const std::string> bytes;
};

ProgramClock::ProgramClock(std::shared_ptr<velqua::Entorno> base, std::optional<FechaHora> fixed)
    : base_(base ? std::move(base) : velqua::EntornoSistema()),
      real_files_(base_ == velqua::EntornoSistema()),
      fixed_(fixed) {}

FechaHora ProgramClock::Ahora() const {
  if (probe_) return *probe_;
  if (frozen_) return *frozen_;
  return Now();
}

FechaHora ProgramClock::Now() const { return fixed_ ? *fixed_ : base_->Ahora(); }

std::unique_ptr<velqua::LectorArchivo> ProgramClock::AbreLectura(const std::u16string& name) {
  if (hold_files_ && looked_ && kept_ != nullptr && kept_->name == name) {
    return std::make_unique<KeptReader>(kept_->bytes);
  }
  looked_ = hold_files_;  // looked at now, for the rest of the block
  const std::string path = U8(name);
  struct stat st {};
  if (!real_files_ || path.find('\0') != std::string::npos || ::stat(path.c_str(), &st) != 0 ||
      !S_ISREG(st.st_mode) || st.st_size > kKeptBytes) {
    return base_->AbreLectura(name);
  }
  if (kept_ != nullptr && kept_->name == name && kept_->st.st_dev == st.st_dev &&
      kept_->st.st_ino == st.st_ino && kept_->st.st_size == st.st_size &&
      kept_->st.st_mtim.tv_sec == st.st_mtim.tv_sec &&
      kept_->st.st_mtim.tv_nsec == st.st_mtim.tv_nsec) {
    return std::make_unique<KeptReader>(kept_->bytes);
  }
  std::unique_ptr<velqua::LectorArchivo> file = base_->AbreLectura(name);
  if (file == nullptr) return nullptr;
  auto bytes = std::make_shared<std::string>();
  char block[65536];
  for (std::size_t n; (n = file->Lee(block, sizeof block)) > 0;) bytes->append(block, n);
  // Changed while read: read again next time.
  if (static_cast<int64_t>(bytes->size()) == st.st_size) {
    kept_ = std::make_shared<Kept>(Kept{name, st, bytes});
  } else {
    kept_.reset();
  }
  return std::make_unique<KeptReader>(std::move(bytes));
}

bool ProgramClock::AnexaArchivo(const std::u16string& name, std::string_view bytes) {
  return base_->AnexaArchivo(name, bytes);
}

bool ProgramClock::RenombraArchivo(const std::u16string& from, const std::u16string& to) {
  return base_->RenombraArchivo(from, to);
}

int64_t ProgramClock::LongitudArchivo(const std::u16string& name) {
  return base_->LongitudArchivo(name);
}

void ProgramClock::Freeze() { frozen_ = Now(); }

void ProgramClock::Thaw() { frozen_.reset(); }

uint8_t ProgramClock::PrintedParts(velqua::clsTraductor& traductor, const DateTime& read) {
  struct Restore {
    std::optional<FechaHora>& probe;
    ~Restore() { probe.reset(); }
  } restore{probe_};
  probe_ = ProbeFor(Ahora());
  const DateTime probed{traductor.Dia(), traductor.Mes(), traductor.Anio(), traductor.Hora()};
  // A time is hours * 3600 + minutes * 60 + seconds; under the probe each
  // component that came from the clock moved (by one, or by twelve hours for
  // a 12-hour record at noon), each printed one stayed.
  int64_t diff = int64_t{probed.time} - read.time;
  const int64_t seconds = Step(diff, 60);
  diff -= seconds;
  const int64_t minutes = Step(diff / 60, 60);
  diff -= 60 * minutes;
  uint8_t printed = 0;
  if (probed.day == read.day) printed |= kPrintedDay;
  if (probed.month == read.month) printed |= kPrintedMonth;
  if (probed.year == read.year) printed |= kPrintedYear;
  if (diff == 0) printed |= kPrintedHour;
  if (minutes == 0) printed |= kPrintedMinute;
  if (seconds == 0) printed |= kPrintedSecond;
  return printed;
}

namespace {
std::optional<FechaHora> gProgramNow;  // written once at start-up, before any thread
}  // namespace

void FixProgramNow(const FechaHora& now) { gProgramNow = now; }
std::optional<FechaHora> ProgramFixedNow() { return gProgramNow; }
FechaHora ProgramNow() { return gProgramNow ? *gProgramNow : velqua::EntornoSistema()->Ahora(); }

int32_t YearReceived(int32_t month, int32_t day, const FechaHora& received) {
  const bool later = month > received.intMes || (month == received.intMes && day > received.intDia);
  return later ? received.intAnio - 1 : received.intAnio;
}

}  // namespace velqua_records
