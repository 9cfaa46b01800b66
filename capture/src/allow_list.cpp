#include "allow_list.h"

#include <asio/ip/network_v4.hpp>
#include <asio/ip/network_v6.hpp>

namespace velqua_capture {

bool AllowList::Parse(const std::string& text, Entry* entry) {
  asio::error_code ec;
  if (text.find('/') == std::string::npos) {
    entry->address = asio::ip::make_address(text, ec);
    entry->prefix = -1;
  } else if (text.find(':') == std::string::npos) {
    const asio::ip::network_v4 net = asio::ip::make_network_v4(text, ec);
    entry->address = net.network();
    entry->prefix = net.prefix_length();
  } else {
    const asio::ip::network_v6 net = asio::ip::make_network_v6(text, ec);
    entry->address = net.network();
    entry->prefix = net.prefix_length();
  }
  return !ec;
}

AllowList::AllowList(const std::vector<std::string>& entries) {
  for (const std::string& text : entries) {
    Entry entry;
    if (Parse(text, &entry)) entries_.push_back(entry);
  }
}

bool AllowList::Valid(const std::string& entry) {
  Entry parsed;
  return Parse(entry, &parsed);
}

bool AllowList::Admits(const asio::ip::address& peer) const {
  if (entries_.empty()) return true;
  for (const Entry& e : entries_) {
    if (e.prefix < 0) {
      if (e.address == peer) return true;
    } else if (e.address.is_v4() && peer.is_v4()) {
      const asio::ip::network_v4 net(peer.to_v4(), static_cast<unsigned short>(e.prefix));
      if (net.network() == e.address.to_v4()) return true;
    } else if (e.address.is_v6() && peer.is_v6()) {
      const asio::ip::network_v6 net(peer.to_v6(), static_cast<unsigned short>(e.prefix));
      if (net.network() == e.address.to_v6()) return true;
    }
  }
  return false;
}

}  // namespace velqua_capture
