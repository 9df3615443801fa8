// The base of everything that an automation client can hold a reference to.
#pragma once

namespace ambrelio {

class Object {
 public:
  virtual ~Object() = default;
  // The class's name in the object model, as "Tolva".
  virtual const char* ClassName() const = 0;

 protected:
  Object() = default;
  Object(const Object&) = default;
  Object& operator=(const Object&) = default;
};

}  // namespace ambrelio
