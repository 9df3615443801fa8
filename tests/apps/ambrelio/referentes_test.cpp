#include "small_mill.h"

namespace ambrelio::cli {
namespace {

class ReferentesCommand : public test::SmallMillTest {};

TEST_F(ReferentesCommand, ListsClientsByCode) {
  EXPECT_EQ(Out({"referentes", "clientes"}),
            "Código  Nombre     NIF\n"
            "------  ---------  ---\n"
            "     5  Sur, S.A.  B23\n"
            "     8  Ávila      -\n");
}

TEST_F(ReferentesCommand, ListsClientsByName) {
  EXPECT_EQ(Out({"referentes", "clientes", "--por-nombre", "--csv"}),
            "codigo,nombre,nif\r\n8,Ávila,\"\"\r\n5,\"Sur, S.A.\",B23\r\n");
}

TEST_F(ReferentesCommand, ListsCarriers) {
  EXPECT_EQ(Out({"referentes", "transportistas", "--json"}),
            R"([{"codigo":3,"nombre":"Rápido","nif":""}])"
            "\n");
}

TEST_F(ReferentesCommand, PrintsOneWithItsLines) {
  EXPECT_EQ(Out({"referentes", "clientes", "5"}),
            "Código         5\n"
            "Nombre         Sur, S.A.\n"
            "NIF            B23\n"
            "Información 1  uno\n"
            "Información 2  tres\n"
            "Información 3  dos\n");
  EXPECT_EQ(Out({"referentes", "transportistas", "3", "--json"}),
            R"({"codigo":3,"nombre":"Rápido","nif":"","info1":"","info2":"","info3":""})"
            "\n");
}

TEST_F(ReferentesCommand, RefusesWhatTheMillDoesNotHave) {
  EXPECT_EQ(Refusal({"referentes", "clientes", "3"}), "ambrelio: the mill has no client 3 (CODE)");
  EXPECT_EQ(Refusal({"referentes", "transportistas", "5"}),
            "ambrelio: the mill has no carrier 5 (CODE)");
  EXPECT_EQ(Refusal({"referentes", "socios"}),
            "ambrelio: KIND: socios not in {clientes,transportistas}");
  EXPECT_EQ(Refusal({"referentes", "clientes", "5", "--por-nombre"}),
            "ambrelio: CODE excludes --por-nombre");
  EXPECT_EQ(Refusal({"referentes"}), "ambrelio: KIND is required");
}

}  // namespace
}  // namespace ambrelio::cli
