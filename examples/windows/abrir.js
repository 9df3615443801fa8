// Abre una almazara y muestra lo que hay en sus tolvas y depósitos.
//
//   cscript //nologo abrir.js C:\Almazara
//
// La carpeta es la de la aplicación, donde están CLIEN.INI y Vardex.ini.

if (WScript.Arguments.length != 1) {
    WScript.Echo("Uso: cscript //nologo abrir.js CARPETA");
    WScript.Quit(2);
}

// Constructor no falla si la base no se abre: hay que preguntar por BaseAbierta.
var traza = new ActiveXObject("Ambrelio.Trazabilidad");
traza.Constructor(WScript.Arguments(0), false);
if (!traza.BaseAbierta()) {
    WScript.Echo("No se puede abrir la base de datos de la almazara.");
    WScript.Quit(1);
}

for (var numero = 1; numero <= traza.MaximoTolvas(); ++numero) {
    var tolva = traza.Tolva(numero);
    WScript.Echo("Tolva " + numero + ": descarga " + tolva.DescargaEnCurso + ", " +
        tolva.Partidas() + " partidas, " + conComa(tolva.Acumulado(), 1) + " kg");
}

// Deposito devuelve null detrás del último.
numero = 1;
for (var deposito = traza.Deposito(numero); deposito !== null; deposito = traza.Deposito(++numero)) {
    WScript.Echo("Depósito " + numero + " (" + deposito.Nombre + "): " +
        conComa(deposito.LitrosActual(), 1) + " litros, " + conComa(deposito.KilosActual(), 1) + " kg");
}
traza.Cerrar();

// Un número con sus decimales, o un guion cuando no se conoce (null).
function conComa(valor, decimales) {
    return valor === null ? "-" : valor.toFixed(decimales).replace(".", ",");
}
