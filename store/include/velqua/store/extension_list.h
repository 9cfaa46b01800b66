// A switch's extension list (the account code to extension list of the
// KX-TDA account-code cases) is kept with the switch in the store, as its
// time zone is: `velqua import` keeps the list it is given (or the bundled
// switch's own), and `velqua retranslate` and the capture service translate
// with the kept list when given none, so that a call is never charged to an
// extension because the list was left behind on another machine.
#pragma once

#include <string>

namespace velqua_store {

// The list a switch's records are translated with, as a file the library
// reads (it reads the list afresh at every lookup).
class SwitchExtensionList {
 public:
  // Chooses the list: the file `given` (a path the user named; "" = none),
  // else the text `stored` with the switch (copied into a file of this
  // process's own, removed with the object), else the bundled switch's own
  // list when `config` is a bundled switch's name. Throws
  // velqua_records::Failure for a given or bundled list that cannot be read
  // or is not text (UTF-8 without NUL bytes).
  SwitchExtensionList(const std::string& given, const std::string& stored,
                      const std::string& config);
  ~SwitchExtensionList();
  SwitchExtensionList(const SwitchExtensionList&) = delete;
  SwitchExtensionList& operator=(const SwitchExtensionList&) = delete;

  // The file to translate with; "" = no list.
  const std::string& path() const { return path_; }
  // The text to keep with the switch: the given or bundled list's; "" when
  // the list came from the store (or there is none): nothing new to keep.
  const std::string& to_keep() const { return to_keep_; }

 private:
  std::string path_;
  std::string to_keep_;
  int fd_ = -1;       // the copy of a stored list, open until the end
  std::string temp_;  // its name when it is a temporary file, to remove
};

}  // namespace velqua_store
