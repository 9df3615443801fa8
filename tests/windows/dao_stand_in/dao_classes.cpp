#include "dao_classes.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ambrelio/dao/database.h"
#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/embedded_engine.h"
#include "ambrelio/engine/embedded/storage/storage_file.h"
#include "ambrelio/engine/mill_indexes.h"
#include "ambrelio/platform/file_path.h"
#include "automation_class.h"
#include "editable_rows.h"

namespace ambrelio::stand_in {
namespace {

using com::ComPtr;
using dao::DaoError;

// ---- definitions

ComPtr<IDispatch> Wrap(const std::shared_ptr<dao::Field>& field) {
  using Field = dao::Field;
  static const auto kClass =
      AutomationClass<Field>("DAO.Field")
          .Property("Value", &Field::Value)  // 3219: it belongs to no row
          .AsDefault()
          .Property("Name", &Field::Name, &Field::SetName)
          .Property("Type", &Field::Type)
          .Property("Size", &Field::Size)
          .Property("OrdinalPosition", &Field::OrdinalPosition, &Field::SetOrdinalPosition)
          .Property("Attributes", &Field::Attributes, &Field::SetAttributes)
          .Property("Required", &Field::Required, &Field::SetRequired)
          .Property("AllowZeroLength", &Field::AllowZeroLength, &Field::SetAllowZeroLength)
          .Property("DefaultValue", &Field::DefaultValue, &Field::SetDefaultValue);
  return kClass.Wrap(field);
}

ComPtr<IDispatch> Wrap(const std::shared_ptr<dao::QueryDef>& query) {
  static const auto kClass = AutomationClass<dao::QueryDef>("DAO.QueryDef")
                                 .Property("Name", &dao::QueryDef::Name)
                                 .Property("SQL", &dao::QueryDef::Sql, &dao::QueryDef::SetSql);
  return kClass.Wrap(query);
}

ComPtr<IDispatch> Wrap(const std::shared_ptr<dao::Index>& index);
ComPtr<IDispatch> Wrap(const std::shared_ptr<dao::TableDef>& table);

template <class T>
std::shared_ptr<T> ItemBy(const dao::Collection<T>& items, const Variant& key) {
  return key.is_text() ? items.Item(key.as<std::string>()) : items.Item(ToLong(key));
}

template <class T>
std::vector<Variant> ItemsOf(const dao::Collection<T>& items) {
  std::vector<Variant> list;
  for (int i = 0; i < items.Count(); ++i) list.push_back(Result(Wrap(items.Item(i))));
  return list;
}

// A collection of `owner`, who lives as long as somebody holds the collection.
template <class T, class Owner>
Variant Part(const char* name, const std::shared_ptr<Owner>& owner, dao::Collection<T>& items) {
  using Items = dao::Collection<T>;
  static const auto kClass = AutomationClass<Items>(name)
                                 .Property("Count",
                                           [](const auto& of, const Arguments&) {
                                             return Result(static_cast<int16_t>(of->Count()));
                                           })
                                 .Method("Item", 1, 1,
                                         [](const auto& of, const Arguments& arguments) {
                                           return Result(Wrap(ItemBy(*of, arguments[0])));
                                         })
                                 .AsDefault()
                                 .Method("Append", 1, 1,
                                         [name](const auto& to, const Arguments& arguments) {
                                           const auto item =
                                               AutomationClass<T>::Unwrap(arguments[0]);
                                           if (item == nullptr)
                                             dao::Raise(DaoError::kConversion, name);
                                           to->Append(item);
                                           return Variant();
                                         })
                                 .Method("Delete", 1, 1,
                                         [](const auto& from, const Arguments& arguments) {
                                           from->Delete(ToText(arguments[0]));
                                           return Variant();
                                         })
                                 .Method("Refresh", &Items::Refresh)
                                 .Collects([](const auto& of) { return ItemsOf(*of); });
  return Result(kClass.Wrap(std::shared_ptr<Items>(owner, &items)));
}

template <class Owner>
Variant FieldsOf(const std::shared_ptr<Owner>& owner, const Arguments&) {
  return Part("DAO.Fields", owner, owner->Fields());
}

ComPtr<IDispatch> Wrap(const std::shared_ptr<dao::Index>& index) {
  using Index = dao::Index;
  static const auto kClass =
      AutomationClass<Index>("DAO.Index")
          .Property("Fields", FieldsOf<Index>)
          .AsDefault()
          .Property("Name", &Index::Name, &Index::SetName)
          .Property("Primary", &Index::Primary, &Index::SetPrimary)
          .Property("Unique", &Index::Unique, &Index::SetUnique)
          .Property("IgnoreNulls", &Index::IgnoreNulls, &Index::SetIgnoreNulls)
          .Property("Required", &Index::Required, &Index::SetRequired)
          .Method("CreateField", 0, 3, [](const auto& of, const Arguments& arguments) {
            return Result(Wrap(of->CreateField(ToText(arguments[0]))));
          });
  return kClass.Wrap(index);
}

ComPtr<IDispatch> Wrap(const std::shared_ptr<dao::TableDef>& table) {
  using TableDef = dao::TableDef;
  static const auto kClass =
      AutomationClass<TableDef>("DAO.TableDef")
          .Property("Fields", FieldsOf<TableDef>)
          .AsDefault()
          .Property("Name", &TableDef::Name, &TableDef::SetName)
          .Property("Indexes",
                    [](const auto& of, const Arguments&) {
                      return Part("DAO.Indexes", of, of->Indexes());
                    })
          .Method("CreateField", 0, 3,
                  [](const auto& of, const Arguments& arguments) {
                    return Result(Wrap(of->CreateField(
                        ToText(arguments[0]), static_cast<dao::FieldType>(ToInteger(arguments[1])),
                        ToLong(arguments[2]))));
                  })
          .Method("CreateIndex", 0, 1, [](const auto& of, const Arguments& arguments) {
            return Result(Wrap(of->CreateIndex(ToText(arguments[0]))));
          });
  return kClass.Wrap(table);
}

// ---- databases

// The databases that are open, by file and connect text. Whoever opens a file in the process that
// is open already is given the same one: as with DAO, a level of the workspace is then nobody's
// lock against the other. Close lets one go, and the last one closes it.
using OpenFiles = std::map<std::string, std::weak_ptr<dao::Database>>;
OpenFiles& TheOpenFiles() {
  static OpenFiles files;
  return files;
}

// What a Database object stands for.
struct OpenDatabase {
  std::shared_ptr<dao::Database> database;  // null when it was closed here, and others have it open
  std::string path;
  std::string key{};  // in the open files

  dao::Database& Data() const {
    if (database == nullptr) dao::Raise(DaoError::kObjectClosed, "DAO.Database");
    return *database;
  }
  // As the client named it.
  std::string Name() const { return path; }
  int32_t RecordsAffected() const { return Data().RecordsAffected(); }
  void Close() {
    if (database.use_count() > 1) {
      database.reset();
      return;
    }
    Data().Close();
    TheOpenFiles().erase(key);
  }
};

// A recordset with its database, which stays open as long as there is one of them.
struct OpenRecordset {
  std::shared_ptr<OpenDatabase> of;
  EditableRows rows;
};

// A field of a recordset, which it keeps alive.
struct RowField {
  std::shared_ptr<OpenRecordset> of;
  std::shared_ptr<dao::Field> field;

  Variant Value() const { return of->rows.Value(*field); }
  void SetValue(const Variant& value) { of->rows.Put(*field, value); }
};

// What a field says of itself.
template <auto member>
Variant Told(const std::shared_ptr<RowField>& of, const Arguments&) {
  return Result((*of->field.*member)());
}

ComPtr<IDispatch> Wrap(std::shared_ptr<RowField> field) {
  using Field = dao::Field;
  static const auto kClass = AutomationClass<RowField>("DAO.Field")
                                 .Property("Value", &RowField::Value, &RowField::SetValue)
                                 .AsDefault()
                                 .Property("Name", Told<&Field::Name>)
                                 .Property("Type", Told<&Field::Type>)
                                 .Property("Size", Told<&Field::Size>)
                                 .Property("OrdinalPosition", Told<&Field::OrdinalPosition>)
                                 .Property("Attributes", Told<&Field::Attributes>)
                                 .Property("Required", Told<&Field::Required>)
                                 .Property("AllowZeroLength", Told<&Field::AllowZeroLength>)
                                 .Property("DefaultValue", Told<&Field::DefaultValue>);
  return kClass.Wrap(std::move(field));
}

Variant RowFieldOf(const std::shared_ptr<OpenRecordset>& of, std::shared_ptr<dao::Field> field) {
  return Result(Wrap(std::make_shared<RowField>(RowField{of, std::move(field)})));
}

// The fields of a recordset.
Variant RowFieldsOf(const std::shared_ptr<OpenRecordset>& opened, const Arguments&) {
  static const auto kClass =
      AutomationClass<OpenRecordset>("DAO.Fields")
          .Property("Count",
                    [](const auto& of, const Arguments&) {
                      return Result(static_cast<int16_t>(of->rows.Fields().Count()));
                    })
          .Method("Item", 1, 1,
                  [](const auto& of, const Arguments& arguments) {
                    return RowFieldOf(of, ItemBy(of->rows.Fields(), arguments[0]));
                  })
          .AsDefault()
          .Collects([](const std::shared_ptr<OpenRecordset>& of) {
            std::vector<Variant> list;
            auto& fields = of->rows.Fields();
            for (int i = 0; i < fields.Count(); ++i) list.push_back(RowFieldOf(of, fields.Item(i)));
            return list;
          });
  return Result(kClass.Wrap(opened));
}

// A member of the rows that takes nothing.
template <auto member>
Variant OfRows(const std::shared_ptr<OpenRecordset>& of, const Arguments&) {
  using Given = decltype((of->rows.*member)());
  if constexpr (std::is_void_v<Given>) {
    (of->rows.*member)();
    return {};
  } else {
    return Result((of->rows.*member)());
  }
}

ComPtr<IDispatch> Wrap(std::shared_ptr<OpenRecordset> opened) {
  using Rows = EditableRows;
  static const auto kClass = AutomationClass<OpenRecordset>("DAO.Recordset")
                                 .Property("Fields", RowFieldsOf)
                                 .AsDefault()
                                 .Property("EOF", OfRows<&Rows::AtEnd>)
                                 .Property("BOF", OfRows<&Rows::AtStart>)
                                 .Property("EditMode", OfRows<&Rows::EditMode>)
                                 .Method("MoveFirst", 0, 0, OfRows<&Rows::MoveFirst>)
                                 .Method("MoveLast", 0, 0, OfRows<&Rows::MoveLast>)
                                 .Method("MoveNext", 0, 0, OfRows<&Rows::MoveNext>)
                                 .Method("MovePrevious", 0, 0, OfRows<&Rows::MovePrevious>)
                                 .Method("AddNew", 0, 0, OfRows<&Rows::AddNew>)
                                 .Method("Edit", 0, 0, OfRows<&Rows::Edit>)
                                 .Method("Update", 0, 2, OfRows<&Rows::Update>)
                                 .Method("CancelUpdate", 0, 1, OfRows<&Rows::CancelUpdate>)
                                 .Method("Delete", 0, 0, OfRows<&Rows::Delete>)
                                 .Method("Close", 0, 0, OfRows<&Rows::Close>);
  return kClass.Wrap(std::move(opened));
}

Variant Execute(const std::shared_ptr<OpenDatabase>& on, const Arguments& arguments) {
  on->Data().Execute(ToText(arguments[0]), ToLong(arguments[1]));
  return {};
}

Variant OpenRows(const std::shared_ptr<OpenDatabase>& on, const Arguments& arguments) {
  on->Data();
  EditableRows rows(on->database, ToText(arguments[0]),
                    static_cast<dao::RecordsetType>(ToLong(arguments[1])));
  return Result(Wrap(std::make_shared<OpenRecordset>(OpenRecordset{on, std::move(rows)})));
}

Variant CreateTableDef(const std::shared_ptr<OpenDatabase>& on, const Arguments& arguments) {
  return Result(Wrap(on->Data().CreateTableDef(ToText(arguments[0]))));
}

Variant CreateQueryDef(const std::shared_ptr<OpenDatabase>& on, const Arguments& arguments) {
  return Result(Wrap(on->Data().CreateQueryDef(ToText(arguments[0]), ToText(arguments[1]))));
}

Variant TableDefsOf(const std::shared_ptr<OpenDatabase>& of, const Arguments&) {
  return Part("DAO.TableDefs", of, of->Data().TableDefs());
}

Variant QueryDefsOf(const std::shared_ptr<OpenDatabase>& of, const Arguments&) {
  return Part("DAO.QueryDefs", of, of->Data().QueryDefs());
}

ComPtr<IDispatch> Wrap(std::shared_ptr<OpenDatabase> database) {
  static const auto kClass = AutomationClass<OpenDatabase>("DAO.Database")
                                 .Property("TableDefs", TableDefsOf)
                                 .AsDefault()
                                 .Property("QueryDefs", QueryDefsOf)
                                 .Property("Name", &OpenDatabase::Name)
                                 .Property("RecordsAffected", &OpenDatabase::RecordsAffected)
                                 .Method("Execute", 1, 2, Execute)
                                 .Method("OpenRecordset", 1, 4, OpenRows)
                                 .Method("CreateTableDef", 0, 4, CreateTableDef)
                                 .Method("CreateQueryDef", 0, 2, CreateQueryDef)
                                 .Method("Close", &OpenDatabase::Close);
  return kClass.Wrap(std::move(database));
}

// ---- workspaces and the engine

// The engine has files of its own too, which DAO does not know.
void RefuseFilesOfOthers(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::exists(FilePath(path), ignored) && !embedded::IsJetFile(path)) {
    dao::Raise(DaoError::kUnrecognisedFormat, "DAO.Workspace", path);
  }
}

Variant Open(const std::shared_ptr<dao::Workspace>& workspace, const Arguments& arguments) {
  // A password is for nothing when the arguments before it are left out.
  if (arguments.Has(3) && !(arguments.Has(1) && arguments.Has(2))) {
    dao::Raise(DaoError::kWrongPassword, "DAO.Workspace");
  }
  const std::string path = ToText(arguments[0]);
  RefuseFilesOfOthers(path);
  const std::string connect = ToText(arguments[3]);
  const std::string key = path + (connect == ";pwd=" ? "" : connect);
  std::shared_ptr<dao::Database> database = TheOpenFiles()[key].lock();
  if (database == nullptr) {
    database =
        workspace->OpenDatabase(path, ToBoolean(arguments[1]), ToBoolean(arguments[2]), connect);
    TheOpenFiles()[key] = database;
  }
  return Result(Wrap(std::make_shared<OpenDatabase>(OpenDatabase{std::move(database), path, key})));
}

Variant Create(const std::shared_ptr<dao::Workspace>& workspace, const Arguments& arguments) {
  const std::string path = ToText(arguments[0]);
  auto database = workspace->CreateDatabase(path, ToText(arguments[1]));
  return Result(Wrap(std::make_shared<OpenDatabase>(OpenDatabase{std::move(database), path})));
}

ComPtr<IDispatch> Wrap(std::shared_ptr<dao::Workspace> workspace) {
  using Workspace = dao::Workspace;
  static const auto kClass =
      AutomationClass<Workspace>("DAO.Workspace")
          .Method("OpenDatabase", 1, 4, Open)
          .Method("CreateDatabase", 2, 3, Create)
          .Method("BeginTrans", &Workspace::BeginTrans)
          .Method("CommitTrans", 0, 1,
                  [](const auto& of, const Arguments&) {
                    of->CommitTrans();
                    return Variant();
                  })
          .Method("Rollback", &Workspace::Rollback)
          // That of the default workspace is passed over.
          .Method("Close", 0, 0, [](const auto&, const Arguments&) { return Variant(); });
  return kClass.Wrap(std::move(workspace));
}

// The engine as the owner of its workspaces, of which there is one.
struct Workspaces {
  std::shared_ptr<dao::DBEngine> engine;

  int16_t Count() const { return 1; }
  std::shared_ptr<dao::Workspace> Item(const Variant& key) const {
    const bool known =
        key.is_text() ? key.as<std::string>() == "#Default Workspace#" : ToLong(key) == 0;
    if (!known) dao::Raise(DaoError::kNotInCollection, "DAO.Workspaces", ToText(key));
    return {engine, &engine->DefaultWorkspace()};
  }
};

Variant WorkspacesOf(const std::shared_ptr<dao::DBEngine>& engine, const Arguments&) {
  static const auto kClass =
      AutomationClass<Workspaces>("DAO.Workspaces")
          .Property("Count", &Workspaces::Count)
          .Method("Item", 1, 1,
                  [](const auto& of, const Arguments& arguments) {
                    return Result(Wrap(of->Item(arguments[0])));
                  })
          .AsDefault()
          .Collects([](const auto& of) { return std::vector{Result(Wrap(of->Item(int32_t{0})))}; });
  return Result(kClass.Wrap(std::make_shared<Workspaces>(Workspaces{engine})));
}

std::shared_ptr<dao::Workspace> DefaultOf(const std::shared_ptr<dao::DBEngine>& engine) {
  return {engine, &engine->DefaultWorkspace()};
}

}  // namespace

ComPtr<IDispatch> NewDbEngine() {
  using Engine = dao::DBEngine;
  // Never destroyed, as the workspaces of a process live as long as it does; with the indexes
  // that the library's own engine keeps, so that sums run in the same order.
  static const auto* const engine = new std::shared_ptr<Engine>(
      embedded::CreateEngine(embedded::PlanOptions(), engine::MillIndexes()));
  static const auto kClass =
      AutomationClass<Engine>("DAO.DbEngine")
          .Property("Workspaces", WorkspacesOf)
          .AsDefault()
          .Property("Version", &Engine::Version)
          // Those of the default workspace, for short.
          .Method("OpenDatabase", 1, 4,
                  [](const auto& of, const Arguments& arguments) {
                    return Open(DefaultOf(of), arguments);
                  })
          .Method("CreateDatabase", 2, 3,
                  [](const auto& of, const Arguments& arguments) {
                    return Create(DefaultOf(of), arguments);
                  })
          // There is no cache to wait for.
          .Method("Idle", 0, 1, [](const auto&, const Arguments&) { return Variant(); });
  return kClass.Wrap(*engine);
}

}  // namespace ambrelio::stand_in
