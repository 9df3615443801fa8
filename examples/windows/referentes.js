// Clientes y transportistas, y las historias de la almazara.
//
//   cscript //nologo referentes.js C:\AlmazaraDePrueba
//
// Crea un cliente, lo cambia y lo borra; después muestra lo que ha pasado en la almazara.

var CLIENTES = 1, TRANSPORTISTAS = 2;

var traza = new ActiveXObject("Ambrelio.Trazabilidad");
traza.Constructor(WScript.Arguments(0), false);
if (!traza.BaseAbierta()) {
    WScript.Echo("No se puede abrir la base de datos de la almazara.");
    WScript.Quit(1);
}

var nuevo = traza.NuevoReferente(CLIENTES);
nuevo.Nombre = "Almacenes Núñez";
nuevo.NIF = "B23100001";
nuevo.Info(1) = "Pedidos: 953 000 000";
WScript.Echo("Guardado: " + siNo(traza.GuardarReferente(CLIENTES, nuevo)));

// Un nombre que ya está es el error 3022: es lo único que este miembro no contesta con false.
try {
    traza.GuardarReferente(CLIENTES, nuevo);
} catch (e) {
    WScript.Echo("Otra vez: error " + (e.number & 0xFFFF));
}

// Un referente es una copia: se carga, se cambia y se guarda entero.
var cliente = traza.UnReferente(CLIENTES, nuevo.Codigo);
cliente.NIF = "B23100002";
WScript.Echo("Cambiado: " + siNo(traza.GuardarReferente(CLIENTES, cliente)));

lista("Clientes", traza.ListaReferentes(CLIENTES, 1));
lista("Transportistas", traza.ListaReferentes(TRANSPORTISTAS, 1));
WScript.Echo("Borrado: " + siNo(traza.EliminarReferente(CLIENTES, nuevo.Codigo)));

// Las filas de las tres historias empiezan igual: 0 momento, 1 número, 2 tolva, 3 depósito, 4 kilos,
// 5 litros y 6 depósito de destino.
WScript.Echo("Descargas:");
cadaFila(traza.HistoriaDescargas(), function (fila) {
    WScript.Echo("  " + momento(fila) + "  tolva " + fila.getItem(2) + ", depósito " + fila.getItem(3) + ", " +
        conComa(fila.getItem(4), 1) + " kg");
});
WScript.Echo("Niveles:");
cadaFila(traza.HistoriaNiveles(), function (fila) {
    WScript.Echo("  " + momento(fila) + "  depósito " + fila.getItem(3) + ", " + conComa(fila.getItem(5), 1) + " litros");
});
WScript.Echo("Vaciados:");
cadaFila(traza.HistoriaVaciados(), function (fila) {
    WScript.Echo("  " + momento(fila) + "  depósito " + fila.getItem(3) + ", " + conComa(fila.getItem(5), 1) +
        " litros, " + fila.getItem(10));
});
traza.Cerrar();

function lista(titulo, referentes) {
    WScript.Echo(titulo + ":");
    cadaFila(referentes, function (uno) {
        WScript.Echo("  " + uno.getItem(0) + "  " + uno.getItem(1) + "  " + uno.getItem(2));
    });
}

// Una lista sin filas llega como undefined.
function cadaFila(lista, haz) {
    if (lista === undefined) return;
    lista = new VBArray(lista);
    for (var i = 0; i <= lista.ubound(); ++i) haz(new VBArray(lista.getItem(i)));
}

function momento(fila) {
    var cuando = new Date(fila.getItem(0));
    return dos(cuando.getDate()) + "/" + dos(cuando.getMonth() + 1) + "/" + cuando.getFullYear() + " " +
        dos(cuando.getHours()) + ":" + dos(cuando.getMinutes());
}

function dos(numero) {
    return ("0" + numero).slice(-2);
}

function siNo(valor) {
    return valor ? "sí" : "no";
}

function conComa(valor, decimales) {
    return valor.toFixed(decimales).replace(".", ",");
}
