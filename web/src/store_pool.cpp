#include "store_pool.h"

namespace velqua_web {

StorePool::Lease StorePool::Borrow() {
  std::unique_lock<std::mutex> lock(mutex_);
  returned_.wait(lock, [&] { return !idle_.empty() || opened_ < size_; });
  if (!idle_.empty()) {
    auto store = std::move(idle_.back());
    idle_.pop_back();
    return Lease(*this, std::move(store));
  }
  ++opened_;
  lock.unlock();
  try {
    return Lease(*this, velqua_store::OpenStore(url_, false));
  } catch (...) {
    lock.lock();
    --opened_;
    returned_.notify_one();
    throw;
  }
}

void StorePool::GiveBack(std::unique_ptr<velqua_store::Store> store) {
  if (!store) return;
  std::lock_guard<std::mutex> lock(mutex_);
  idle_.push_back(std::move(store));
  returned_.notify_one();
}

}  // namespace velqua_web
