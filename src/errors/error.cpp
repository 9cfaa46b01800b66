#include "velqua/error.h"

#include <utility>

#include "velqua/texto.h"

namespace velqua {

Error::Error(int32_t number, std::u16string source, std::u16string description)
    : number_(number),
      source_(std::move(source)),
      description_(std::move(description)),
      what_(AUtf8(description_)) {}

int32_t Error::Number() const noexcept { return number_; }

const std::u16string& Error::Source() const noexcept { return source_; }

const std::u16string& Error::Description() const noexcept { return description_; }

const char* Error::what() const noexcept { return what_.c_str(); }

}  // namespace velqua
