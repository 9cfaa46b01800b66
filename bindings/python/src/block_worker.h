// A thread that translates the next block of records while Python hands out
// the rows of the one before: the road's work needs neither the GIL nor the
// caller's thread.
#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "road.h"

namespace velqua_python {

class BlockWorker {
 public:
  // One block's work: its rows into the vector; true when it ended the input.
  using Job = std::function<bool(std::vector<velqua_bindings::Row>*)>;

  BlockWorker() = default;
  // Waits for the job under way, then ends the thread.
  ~BlockWorker();
  BlockWorker(const BlockWorker&) = delete;
  BlockWorker& operator=(const BlockWorker&) = delete;

  // Starts a job; the one before must have been waited for.
  void Run(Job job);
  // Waits for the job, moves its rows into *rows (empty) and gives its
  // result; an exception of the job is thrown here.
  bool Wait(std::vector<velqua_bindings::Row>* rows);
  // Waits until the job under way, if any, is done, keeping its rows.
  void WaitIdle();

 private:
  void Loop();

  std::mutex mutex_;
  std::condition_variable changed_;
  Job job_;
  bool running_ = false;  // a job given and not yet done
  bool done_ = false;     // a job done and not yet waited for
  bool quit_ = false;
  bool result_ = false;
  std::vector<velqua_bindings::Row> rows_;
  std::exception_ptr error_;
  std::thread thread_;
};

}  // namespace velqua_python
