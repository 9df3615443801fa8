// Statements that stand in the middle of their rows, for whoever is about to change what they would
// still deliver.
#pragma once

#include <memory>
#include <vector>

namespace ambrelio::embedded {

class OpenRead {
 public:
  virtual ~OpenRead() = default;
  OpenRead(const OpenRead&) = delete;
  OpenRead& operator=(const OpenRead&) = delete;

  // Reads what is left and lets go of the storage. An error is kept for the row that it befell.
  virtual void Settle() noexcept = 0;
  // Lets go of the storage at once: nobody can ask for the rest any more.
  virtual void Abandon() noexcept = 0;

 protected:
  OpenRead() = default;
};

// Those of one connection. It knows them without keeping them.
class OpenReads {
 public:
  void Add(const std::shared_ptr<OpenRead>& read);
  void Settle() noexcept;
  void Abandon() noexcept;

 private:
  std::vector<std::weak_ptr<OpenRead>> reads_;
};

}  // namespace ambrelio::embedded
