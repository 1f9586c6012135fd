// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/status_item_situation.hpp"

namespace vantora {

std::string_view describe(StatusItemSituation situation) {
  switch (situation) {
    case StatusItemSituation::shown:
      return "O item de status está no painel.";
    case StatusItemSituation::noHost:
      return "Nenhum painel mostra itens de status; o item aparece quando houver um.";
    case StatusItemSituation::noBus:
      return "Sem conexão com o D-Bus da sessão; o item de status aparece quando houver uma.";
  }
  return {};
}

}  // namespace vantora
