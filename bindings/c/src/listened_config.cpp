#include "listened_config.h"

#include <algorithm>

namespace velqua_bindings {

ListenedConfig::~ListenedConfig() {
  for (const auto& listener : listeners_) cfg_->QuitaOyente(listener.get());
}

void ListenedConfig::Add(std::unique_ptr<Listener> listener) {
  cfg_->AgregaOyente(listener.get());
  listeners_.push_back(std::move(listener));
}

void ListenedConfig::Remove(const std::function<bool(const Listener&)>& same) {
  const auto it = std::find_if(listeners_.begin(), listeners_.end(),
                               [&](const std::unique_ptr<Listener>& l) { return same(*l); });
  if (it == listeners_.end()) return;
  cfg_->QuitaOyente(it->get());
  (*it)->Silence();
  retired_.push_back(std::move(*it));
  listeners_.erase(it);
  if (depth_ == 0) retired_.clear();
}

}  // namespace velqua_bindings
