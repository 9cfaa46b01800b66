// The import's writer: translated rows gathered into batches, each batch
// written in its own transaction with the checkpoint where reading resumes
// after it. Batches are written on threads of their own while the next one
// is translated, so that reading and translating and the database's work
// overlap. With several stores (connections to one PostgreSQL database),
// batches are written on all of them at once but committed in order, so
// that the checkpoint only ever covers batches that are all stored. At most
// one batch a store plus one are held, so memory stays flat whatever the
// size of the input.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "velqua/records/call_row.h"
#include "velqua/store/store.h"

namespace velqua_store {

class BatchWriter : public velqua_records::RowSink {
 public:
  // Called on a writer's thread after each batch is committed (in order),
  // with what it wrote, the checkpoint and the number of records read up to it.
  using Committed = std::function<void(const WriteResult&, int64_t checkpoint, int64_t read)>;

  // One writer thread a store; the stores must all open the same database.
  BatchWriter(const std::vector<Store*>& stores, size_t size);
  // Writes the batches in hand and stops the threads.
  ~BatchWriter() override;
  BatchWriter(const BatchWriter&) = delete;
  BatchWriter& operator=(const BatchWriter&) = delete;

  // The source the next rows belong to, when they were received, and what
  // to call after each batch.
  void Start(const Source& source, std::string received_utc, Committed committed);

  // Adds a row; a full batch is handed to the writers, its checkpoint set
  // to this row's offset (every byte before it is then stored).
  void Write(const velqua_records::Row& row) override;

  // Hands over what is gathered with the checkpoint `resume_at` (a file's
  // end), waits until everything is written, and throws what a writer met
  // (StoreError, ConnectionLost), if anything.
  void Commit(int64_t resume_at);

 private:
  struct Batch {
    std::vector<Record> records;  // reused: their strings keep their storage
    size_t n = 0;
    Source source;
    int64_t checkpoint = 0;
    int64_t read = 0;
    int64_t sequence = 0;
    Committed committed;
  };

  void Hand(int64_t resume_at);
  void WaitIdle(std::unique_lock<std::mutex>& lock);
  void Run(Store& store);
  void WriteOne(Store& store, Batch& batch);

  size_t size_;
  Batch filling_;
  std::string received_utc_;
  int64_t rows_ = 0;

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Batch> queue_;  // handed, not yet taken by a writer
  std::vector<Batch> pool_;  // written, to be filled again
  int in_flight_ = 0;
  int64_t handed_ = 0;     // sequence number of the last batch handed
  int64_t committed_ = 0;  // and of the last one committed
  bool stop_ = false;
  std::exception_ptr error_;  // the first failure; no later batch commits
  std::vector<std::thread> threads_;
};

}  // namespace velqua_store
