// SPDX-License-Identifier: MIT
#include "settings/error_words.hpp"

#include <cerrno>

namespace vantora {

std::string_view portugueseErrorText(int errorNumber) {
  switch (errorNumber) {
    case EPERM:
      return "Operação não permitida";
    case ENOENT:
      return "Arquivo ou pasta inexistente";
    case EIO:
      return "Erro de leitura ou gravação no dispositivo";
    case ENXIO:
    case ENODEV:
      return "Dispositivo inexistente";
    case EAGAIN:
      return "Recurso temporariamente indisponível";
    case ENOMEM:
      return "Memória insuficiente";
    case EACCES:
      return "Permissão negada";
    case EBUSY:
      return "Dispositivo ou recurso em uso";
    case EEXIST:
      return "O arquivo já existe";
    case ENOTDIR:
      return "Uma parte do caminho não é uma pasta";
    case EISDIR:
      return "É uma pasta";
    case EINVAL:
      return "Argumento inválido";
    case ENFILE:
    case EMFILE:
      return "Arquivos abertos demais";
    case ETXTBSY:
      return "O arquivo do programa está em uso";
    case EFBIG:
      return "O arquivo é grande demais";
    case ENOSPC:
      return "Não há espaço no dispositivo";
    case EROFS:
      return "O sistema de arquivos permite apenas leitura";
    case EPIPE:
      return "A outra ponta foi fechada";
    case ENAMETOOLONG:
      return "O nome do arquivo é longo demais";
    case ELOOP:
      return "Links simbólicos demais no caminho";
    case ETIMEDOUT:
      return "O tempo de espera se esgotou";
    case ECONNREFUSED:
      return "Conexão recusada";
    case EDQUOT:
      return "A cota de disco se esgotou";
    case ESTALE:
      return "O arquivo não existe mais no servidor";
    default:
      return {};
  }
}

}  // namespace vantora
