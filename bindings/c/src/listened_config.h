// A configuration as a host holds it through the bindings: the library's
// object, shared with the translators bound to it, and the host's listeners
// (C callbacks or Python callables), which the bindings own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/records/config_io.h"
#include "velqua/records/record_form.h"

namespace velqua_bindings {

// The numbers of the three notifications, as the automation interface
// dispatched them.
enum Notification : int32_t {
  kCambioNombreConmutador = 1,
  kConfiguracionCargada = 2,
  kCambios = 3,
};

// One registration of a host's listener. A removed one stays alive but
// silent until no operation of its configuration is running: the library
// delivers from a copy of its list, so it may still be called once.
class Listener : public velqua::EventosCfgConmut {
 public:
  void CambioNombreConmutador() override { Deliver(kCambioNombreConmutador); }
  void ConfiguracionCargada() override { Deliver(kConfiguracionCargada); }
  void Cambios() override { Deliver(kCambios); }

  bool active() const { return active_; }
  void Silence() { active_ = false; }

 protected:
  virtual void Notify(int32_t notification) = 0;

 private:
  void Deliver(int32_t notification) {
    if (active_) Notify(notification);
  }
  bool active_ = true;
};

class ListenedConfig {
 public:
  explicit ListenedConfig(std::shared_ptr<velqua::clsCfgConmut> cfg,
                          velqua_records::RecordForm form = {}, std::string delivery = {})
      : cfg_(std::move(cfg)), form_(std::move(form)), delivery_(std::move(delivery)) {}
  // Unregisters every listener; translators keep the configuration itself.
  ~ListenedConfig();
  ListenedConfig(const ListenedConfig&) = delete;
  ListenedConfig& operator=(const ListenedConfig&) = delete;

  velqua::clsCfgConmut& cfg() const { return *cfg_; }
  const std::shared_ptr<velqua::clsCfgConmut>& shared() const { return cfg_; }
  // How its records are framed and shaped (delimited fields, page headings),
  // as its JSON form declares; plain for a new one or one read from .cfg/.ini.
  const velqua_records::RecordForm& form() const { return form_; }
  // The configuration with its record form and delivery, as its JSON form
  // keeps them (what a save writes).
  velqua_records::SwitchConfig switch_config() const { return {cfg_, form_, delivery_}; }
  // After Abrir or Importar: the binary and profile forms keep no record form
  // or delivery, so the records of the configuration read are taken by column.
  void ForgetRecordForm() {
    form_ = {};
    delivery_.clear();
  }

  // Registers a listener after the others (twice registered, twice called).
  void Add(std::unique_ptr<Listener> listener);
  // Removes the earliest registration `same` accepts; none: nothing happens.
  void Remove(const std::function<bool(const Listener&)>& same);

  // Runs an operation of the configuration that may notify. Listeners
  // removed meanwhile are destroyed when the outermost operation ends.
  template <typename Operation>
  decltype(auto) Run(Operation&& operation) {
    const Depth depth(*this);
    return operation(*cfg_);
  }

 private:
  struct Depth {
    explicit Depth(ListenedConfig& config) : owner(config) { ++owner.depth_; }
    ~Depth() {
      if (--owner.depth_ == 0) owner.retired_.clear();
    }
    ListenedConfig& owner;
  };

  std::shared_ptr<velqua::clsCfgConmut> cfg_;
  velqua_records::RecordForm form_;
  std::string delivery_;
  std::vector<std::unique_ptr<Listener>> listeners_;
  std::vector<std::unique_ptr<Listener>> retired_;
  int depth_ = 0;
};

}  // namespace velqua_bindings
