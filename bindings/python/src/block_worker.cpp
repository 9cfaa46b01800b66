#include "block_worker.h"

#include <utility>

namespace velqua_python {

BlockWorker::~BlockWorker() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    quit_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void BlockWorker::Run(Job job) {
  if (!thread_.joinable()) thread_ = std::thread(&BlockWorker::Loop, this);  // may throw: no job
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    job_ = std::move(job);
    running_ = true;
  }
  changed_.notify_all();
}

bool BlockWorker::Wait(std::vector<velqua_bindings::Row>* rows) {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return done_; });
  done_ = false;
  rows->swap(rows_);  // the caller's emptied vector keeps its storage for the next job
  if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
  return result_;
}

void BlockWorker::WaitIdle() {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return !running_; });
}

void BlockWorker::Loop() {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return quit_ || (running_ && !done_); });
    if (quit_) return;
    Job job = std::move(job_);
    std::vector<velqua_bindings::Row> rows;
    rows.swap(rows_);
    lock.unlock();
    bool result = false;
    std::exception_ptr error;
    try {
      result = job(&rows);
    } catch (...) {
      error = std::current_exception();
    }
    lock.lock();
    rows_.swap(rows);
    result_ = result;
    error_ = error;
    running_ = false;
    done_ = true;
    changed_.notify_all();
  }
}

}  // namespace velqua_python
