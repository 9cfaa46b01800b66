// The peers a listening source admits: addresses and networks, as its
// configuration's "allow" list gives them ("10.1.2.3", "10.1.0.0/16",
// "fd00::/8").
#pragma once

#include <asio/ip/address.hpp>
#include <string>
#include <vector>

namespace velqua_capture {

class AllowList {
 public:
  // An entry that is no address and no network is left out (the
  // configuration's reader refuses it first, with Valid).
  explicit AllowList(const std::vector<std::string>& entries);

  // Whether `entry` is an address or a network with its prefix length.
  static bool Valid(const std::string& entry);

  // Whether `peer` is admitted: every peer when the list is empty.
  bool Admits(const asio::ip::address& peer) const;

 private:
  struct Entry {
    asio::ip::address address;  // a network's: its first address
    int prefix = -1;            // -1: the address alone
  };
  static bool Parse(const std::string& text, Entry* entry);

  std::vector<Entry> entries_;
};

}  // namespace velqua_capture
