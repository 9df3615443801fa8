#include "ambrelio/folders/carpetas.h"

#include <array>

namespace ambrelio::folders {
namespace {

struct Label {
  std::string_view text;  // with its braces
  WellKnownFolder folder;
};

constexpr std::array kLabels = {
    Label{"{Datos de programa}", WellKnownFolder::kSharedData},
    Label{"{Datos de programa (usuario)}", WellKnownFolder::kUserData},
    Label{"{Archivos de programa}", WellKnownFolder::kPrograms},
    Label{"{Mis documentos}", WellKnownFolder::kDocuments},
    Label{"{Escritorio}", WellKnownFolder::kDesktop},
    Label{"{Windows}", WellKnownFolder::kSystemRoot},
    Label{"{System}", WellKnownFolder::kSystem},
    Label{"{SysWow}", WellKnownFolder::kSystem32Bits},
    Label{"{Temporal}", WellKnownFolder::kTemporary},
    Label{"{Descargas}", WellKnownFolder::kDownloads},
};

}  // namespace

std::string ExpandSpecialFolder(std::string_view text, const FolderSource& source) {
  for (const Label& label : kLabels) {
    if (text.starts_with(label.text)) {
      return source(label.folder).append(text.substr(label.text.size()));
    }
  }
  return std::string(text);
}

}  // namespace ambrelio::folders
