// A client or carrier as a record in memory.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "ambrelio/dao/database.h"
#include "ambrelio/value/object.h"

namespace ambrelio {

class Referente : public Object {
 public:
  static constexpr int16_t kInfoLines = 3;

  const char* ClassName() const override { return "Referente"; }

  int32_t Codigo() const { return code_; }
  void SetCodigo(int32_t value) { code_ = value; }
  const std::string& Nombre() const { return name_; }
  void SetNombre(const std::string& value) { name_ = value; }
  // Tax identifier.
  const std::string& NIF() const { return tax_id_; }
  void SetNIF(const std::string& value) { tax_id_ = value; }
  // Free information, lines 1 to 3. Of any other line: "", and setting it does nothing.
  std::string Info(int16_t ix) const;
  void SetInfo(int16_t ix, const std::string& value);

  // Whether it was not loaded from the database. Saving does not change that.
  bool EsNuevo() const { return loaded_code_ == 0; }
  // Whether it may be saved: a code above 0, and a name.
  bool DatosValidos() const { return code_ > 0 && !name_.empty(); }

  // The code under which it was loaded, 0 for a new one.
  int32_t loaded_code() const { return loaded_code_; }
  // Takes the current record of a catalogue. Lines 2 and 3 come crossed: Info(2) from the column
  // Info3 and Info(3) from Info2; saving puts each in its own column.
  void Load(dao::Recordset& record);

 private:
  int32_t loaded_code_ = 0;
  int32_t code_ = 0;
  std::string name_;
  std::string tax_id_;
  std::array<std::string, kInfoLines> info_;
};

}  // namespace ambrelio
