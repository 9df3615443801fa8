"""Abre una almazara y muestra lo que hay en sus tolvas y depósitos.

    py abrir.py C:\\Almazara

La carpeta es la de la aplicación, donde están CLIEN.INI y Vardex.ini. Necesita pywin32, y un Python de
los mismos bits que la biblioteca.
"""

import sys

import win32com.client


def con_coma(valor):
    """Un número con un decimal, o un guion cuando no se conoce (None)."""
    return "-" if valor is None else f"{valor:.1f}".replace(".", ",")


def main(carpeta):
    # Constructor no falla si la base no se abre: hay que preguntar por BaseAbierta.
    traza = win32com.client.Dispatch("Ambrelio.Trazabilidad")
    traza.Constructor(carpeta, False)
    if not traza.BaseAbierta():
        sys.exit("No se puede abrir la base de datos de la almazara.")

    for numero in range(1, traza.MaximoTolvas() + 1):
        tolva = traza.Tolva(numero)
        print(
            f"Tolva {numero}: descarga {tolva.DescargaEnCurso}, {tolva.Partidas()} partidas, "
            f"{con_coma(tolva.Acumulado())} kg"
        )

    # Deposito devuelve None detrás del último.
    numero = 1
    while (deposito := traza.Deposito(numero)) is not None:
        print(
            f"Depósito {numero} ({deposito.Nombre}): {con_coma(deposito.LitrosActual())} litros, "
            f"{con_coma(deposito.KilosActual())} kg"
        )
        numero += 1
    traza.Cerrar()


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("Uso: py abrir.py CARPETA")
    main(sys.argv[1])
