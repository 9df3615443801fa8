// The look-ups that all collections of definitions have in common.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ambrelio/dao/collection.h"
#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/storage/catalogue.h"

namespace ambrelio::embedded {

template <class T>
class DefinitionList : public dao::Collection<T> {
 public:
  std::shared_ptr<T> Item(int index) const final {
    if (index < 0 || index >= this->Count()) RaiseMissing(std::to_string(index));
    return At(index);
  }

  std::shared_ptr<T> Item(std::string_view name) const final { return At(PlaceOf(name)); }

  // Lists in memory have nothing to read again.
  void Refresh() override { this->Count(); }

 protected:
  // `source` is the class that errors name, as dao::source::kFields.
  explicit DefinitionList(std::string source) : source_(std::move(source)) {}

  const std::string& source() const { return source_; }
  // `place` is within the count.
  virtual std::string NameAt(int place) const = 0;
  virtual std::shared_ptr<T> At(int place) const = 0;

  // 3265 when there is no such item.
  int PlaceOf(std::string_view name) const {
    const int place = Find(name);
    if (place < 0) RaiseMissing(std::string(name));
    return place;
  }

  // The item as an object of this engine, as all are that can be appended here.
  template <class Own>
  std::shared_ptr<Own> Owned(const std::shared_ptr<T>& item) const {
    auto own = std::dynamic_pointer_cast<Own>(item);
    if (own == nullptr) dao::Raise(dao::DaoError::kConversion, source_);
    if (own->appended()) dao::Raise(dao::DaoError::kAlreadyAppended, source_, own->Name());
    return own;
  }

  // 3265 when another process has shortened the list since it was counted.
  template <class Info>
  const Info& InfoAt(const std::vector<Info>& infos, int place) const {
    if (place >= static_cast<int>(infos.size())) RaiseMissing(std::to_string(place));
    return infos[static_cast<size_t>(place)];
  }

  // 3367 when a list in memory has the name.
  void CheckFree(const std::string& name) const {
    if (Find(name) >= 0) dao::Raise(dao::DaoError::kNameInCollection, source_, name);
  }

 private:
  int Find(std::string_view name) const {
    const int count = this->Count();
    for (int place = 0; place < count; ++place) {
      if (SameName(NameAt(place), name)) return place;
    }
    return -1;
  }

  [[noreturn]] void RaiseMissing(const std::string& item) const {
    dao::Raise(dao::DaoError::kNotInCollection, source_, item);
  }

  std::string source_;
};

}  // namespace ambrelio::embedded
