// The store connections the requests share: a Store is used by one thread
// at a time, so a request borrows one for its length. Connections open when
// first needed, up to the pool's size; a request past that waits.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "velqua/store/store.h"

namespace velqua_web {

class StorePool {
 public:
  StorePool(std::string url, size_t size) : url_(std::move(url)), size_(size) {}

  // A borrowed connection, given back when the Lease goes.
  class Lease {
   public:
    Lease(StorePool& pool, std::unique_ptr<velqua_store::Store> store)
        : pool_(pool), store_(std::move(store)) {}
    ~Lease() { pool_.GiveBack(std::move(store_)); }
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;
    velqua_store::Store& operator*() { return *store_; }
    velqua_store::Store* operator->() { return store_.get(); }

   private:
    StorePool& pool_;
    std::unique_ptr<velqua_store::Store> store_;
  };

  // Throws StoreError when a new connection cannot be opened.
  Lease Borrow();

 private:
  void GiveBack(std::unique_ptr<velqua_store::Store> store);

  std::string url_;
  size_t size_;
  size_t opened_ = 0;
  std::mutex mutex_;
  std::condition_variable returned_;
  std::vector<std::unique_ptr<velqua_store::Store>> idle_;
};

}  // namespace velqua_web
