// A class of automation objects as a table: the name of a member, and what it does.
//
//   static const auto kClass =
//       AutomationClass<dao::QueryDef>("DAO.QueryDef")
//           .Property("Name", &dao::QueryDef::Name)
//           .Property("SQL", &dao::QueryDef::Sql, &dao::QueryDef::SetSql);
//   return kClass.Wrap(query);
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "arguments.h"
#include "dispatch_object.h"

namespace ambrelio::stand_in {

template <class Target>
class AutomationClass {
 public:
  using TargetPtr = std::shared_ptr<Target>;
  using Action = std::function<Variant(const TargetPtr&, const Arguments&)>;

  explicit AutomationClass(std::string name) { names_.name = std::move(name); }

  // A member with between `least` and `most` arguments.
  AutomationClass Method(const char* name, size_t least, size_t most, Action action) && {
    names_.members.push_back({name, least, most, false});
    actions_.push_back({std::move(action), {}});
    return std::move(*this);
  }
  AutomationClass Method(const char* name, void (Target::*method)()) && {
    return std::move(*this).Method(name, 0, 0, [method](const TargetPtr& target, const Arguments&) {
      (*target.*method)();
      return Variant();
    });
  }

  // A property that is read, and written where there is something to write it with.
  AutomationClass Property(const char* name, Action get) && {
    return std::move(*this).Method(name, 0, 0, std::move(get));
  }
  template <class Value>
  AutomationClass Property(const char* name, Value (Target::*get)() const) && {
    return std::move(*this).Property(name, [get](const TargetPtr& target, const Arguments&) {
      return Result((*target.*get)());
    });
  }
  template <class Value, class Put>
  AutomationClass Property(const char* name, Value (Target::*get)() const,
                           void (Target::*put)(Put)) && {
    AutomationClass with = std::move(*this).Property(name, get);
    with.names_.members.back().writable = true;
    with.actions_.back().put = [put](const TargetPtr& target, const Arguments& arguments) {
      (*target.*put)(Argument<std::decay_t<Put>>(arguments[0]));
      return Variant();
    };
    return with;
  }

  // The member last added is the default one.
  AutomationClass AsDefault() && {
    names_.default_member = names_.members.size() - 1;
    return std::move(*this);
  }

  // A collection, which For Each walks over; `elements` are those of the moment.
  using List = std::function<std::vector<Variant>(const TargetPtr&)>;
  AutomationClass Collects(List elements) && {
    elements_ = std::move(elements);
    return std::move(*this);
  }

  // An object of this class, which must outlive it, for `target`.
  com::ComPtr<IDispatch> Wrap(TargetPtr target) const {
    return com::ComPtr<IDispatch>::Adopt(new Instance(*this, std::move(target)));
  }

  // What Wrap was given; null for an object of another class.
  static TargetPtr Unwrap(const Variant& object) {
    auto* const instance = dynamic_cast<Instance*>(DispatchObject::Own(object));
    return instance == nullptr ? nullptr : instance->target;
  }

 private:
  struct Actions {
    Action call;
    Action put;
  };

  struct Instance final : DispatchObject {
    Instance(const AutomationClass& of, TargetPtr the_target)
        : DispatchObject(of.names_), the_class(of), target(std::move(the_target)) {}
    Variant Perform(size_t member, bool put, const Arguments& arguments) override {
      const Actions& actions = the_class.actions_[member];
      return (put ? actions.put : actions.call)(target, arguments);
    }
    std::optional<std::vector<Variant>> Elements() override {
      if (!the_class.elements_) return std::nullopt;
      return the_class.elements_(target);
    }
    const AutomationClass& the_class;
    const TargetPtr target;
  };

  ClassNames names_;
  std::vector<Actions> actions_;  // beside names_.members
  List elements_;
};

}  // namespace ambrelio::stand_in
