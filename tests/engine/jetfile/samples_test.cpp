// What must be true of every sample: files made by the original engine, and one of another library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ambrelio/engine/jetfile/catalogue.h"
#include "ambrelio/engine/jetfile/checker.h"
#include "ambrelio/engine/jetfile/index_key.h"
#include "ambrelio/engine/jetfile/index_tree.h"
#include "ambrelio/engine/jetfile/properties.h"
#include "ambrelio/engine/jetfile/table_reader.h"
#include "engine/jetfile/samples.h"

namespace ambrelio::jetfile {
namespace {

class EverySample : public testing::TestWithParam<Sample> {
 protected:
  EverySample() : file_(OpenSample(GetParam())), catalogue_(ReadCatalogue(file_)) {}

  template <class Visit>
  void ForEachTable(Visit visit) {
    for (const CatalogueObject& object : catalogue_.objects) {
      if (object.type != ObjectType::kTable) continue;
      SCOPED_TRACE(object.name);
      visit(ReadDefinition(file_, object.definition_page()));
    }
  }

  JetFile file_;
  Catalogue catalogue_;
};

INSTANTIATE_TEST_SUITE_P(Files, EverySample, testing::ValuesIn(Samples()),
                         [](const auto& sample) { return TestName(sample.param); });

TEST_P(EverySample, IsOfTheFormatThatItsNameSays) {
  EXPECT_EQ(file_.format().jet4, GetParam().jet4);
}

TEST_P(EverySample, HasNothingForTheCheckerToFind) {
  for (const Finding& finding : Check(file_)) {
    ADD_FAILURE() << PlaceText(finding.place) << ": " << finding.text;
  }
}

TEST_P(EverySample, WritesEachDefinitionAsItWasRead) {
  size_t tables = 0;
  ForEachTable([&](const TableDefinition& definition) {
    ++tables;
    EXPECT_EQ(SerialiseDefinition(file_, definition),
              ReadDefinitionString(file_, definition.page()).bytes);
  });
  EXPECT_GE(tables, 4);
}

TEST_P(EverySample, WritesThePropertiesOfEachObjectAsTheyWereRead) {
  for (const CatalogueObject& object : catalogue_.objects) {
    SCOPED_TRACE(object.name);
    const Properties properties(file_, {object.properties, {}});
    EXPECT_EQ(properties.Serialise(file_), object.properties);
  }
}

// The rows as the index has them, beside the keys that are computed of their values.
TEST_P(EverySample, HasTheKeysThatItsRowsGive) {
  size_t not_encodable = 0;
  ForEachTable([&](const TableDefinition& definition) {
    for (const IndexDefinition& index : definition.indexes) {
      if (!IsEncodable(definition, index, file_.format().jet4)) continue;
      std::map<RowPointer, Bytes> stored;
      IndexTree(file_, index).Walk([&](const IndexEntry& entry) { stored[entry.row] = entry.key; });
      TableReader reader(file_, definition);
      size_t entries = 0;
      while (reader.Next()) {
        std::vector<Variant> values;
        for (const KeyColumn& key : index.Columns()) {
          values.push_back(reader.Value(*definition.FindColumn(key.column)));
        }
        const auto found = stored.find(reader.identity());
        if (found == stored.end()) continue;  // of Nulls that are ignored
        ++entries;
        const auto key = EncodeKey(definition, index, values, file_.format().jet4);
        if (key) {
          EXPECT_EQ(*key, found->second);
        } else {
          ++not_encodable;
        }
      }
      EXPECT_EQ(entries, stored.size());
    }
  });
  // Cyrillic, Greek, Chinese, and a text whose key is too long.
  EXPECT_EQ(not_encodable, GetParam().name == std::string("testUnicodeCompV2003") ? 4 : 0);
}

TEST_P(EverySample, FindsEachRowByItsKey) {
  ForEachTable([&](const TableDefinition& definition) {
    for (const IndexDefinition& index : definition.indexes) {
      const IndexTree tree(file_, index);
      tree.Walk([&](const IndexEntry& entry) {
        EXPECT_THAT(tree.Search(entry.key), testing::Contains(entry.row));
      });
    }
  });
}

}  // namespace
}  // namespace ambrelio::jetfile
