// The smallest program on the installed library: opens the mill in the folder given and asks a
// tank.
#include <ambrelio/frame/trazabilidad.h>
#include <ambrelio/tanks/deposito.h>

#include <iostream>

int main(int, char** argv) {
  ambrelio::Trazabilidad mill;
  mill.Constructor(argv[1], false);
  if (!mill.BaseAbierta()) return 1;
  std::cout << mill.Deposito(1)->Nombre() << '\n';
}
