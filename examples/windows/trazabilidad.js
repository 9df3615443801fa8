// De quién y de qué es el aceite de la última venta.
//
//   cscript //nologo trazabilidad.js C:\Almazara

var traza = new ActiveXObject("Ambrelio.Trazabilidad");
traza.Constructor(WScript.Arguments(0), false);
if (!traza.BaseAbierta()) {
    WScript.Echo("No se puede abrir la base de datos de la almazara.");
    WScript.Quit(1);
}

var venta = ultimaVenta();
if (venta === null) {
    WScript.Echo("No hay ninguna venta.");
    WScript.Quit(0);
}
WScript.Echo("Venta del " + fecha(new Date(venta.Momento)) + ", depósito " + venta.Deposito + ", lote " + venta.Lote);
WScript.Echo(conComa(venta.Litros(), 1) + " litros para " + traza.UnReferente(1, venta.Cliente).Nombre +
    ", " + venta.DestinoVenta + ", con " + traza.UnReferente(2, venta.Transportista).Nombre);

var titulos = ["Socio", "Producto", "Municipio", "Paraje", "Línea"];
for (var clase = 1; clase <= 5; ++clase) {
    tabla(titulos[clase - 1], venta.Composicion(clase));
}
traza.Cerrar();

// La venta más reciente de todos los depósitos, o null.
function ultimaVenta() {
    var ultima = null;
    var numero = 1;
    for (var deposito = traza.Deposito(numero); deposito !== null; deposito = traza.Deposito(++numero)) {
        for (var codigo = 1; codigo <= deposito.UltimoVaciado(); ++codigo) {
            var vaciado = deposito.Vaciado(codigo);
            if (vaciado.Uso != 2) continue;
            if (ultima === null || new Date(vaciado.Momento) > new Date(ultima.Momento)) ultima = vaciado;
        }
    }
    return ultima;
}

// Una composición es una lista de filas de clave, nombre, tanto por ciento y litros, o undefined.
function tabla(titulo, filas) {
    WScript.Echo();
    WScript.Echo(izquierda(titulo, 10) + izquierda("Nombre", 30) + derecha("%", 9) + derecha("Litros", 12));
    if (filas === undefined) return;
    filas = new VBArray(filas).toArray();
    for (var i = 0; i < filas.length; ++i) {
        var fila = new VBArray(filas[i]).toArray();
        WScript.Echo(izquierda(fila[0], 10) + izquierda(fila[1], 30) +
            derecha(conComa(fila[2], 3), 9) + derecha(conComa(fila[3], 2), 12));
    }
}

function espacios(cuantos) {
    return new Array(cuantos + 1).join(" ");
}

function izquierda(texto, ancho) {
    return (texto + espacios(ancho)).substr(0, ancho);
}

function derecha(texto, ancho) {
    texto = espacios(ancho) + texto;
    return texto.substr(texto.length - ancho);
}

function fecha(momento) {
    return ("0" + momento.getDate()).slice(-2) + "/" + ("0" + (momento.getMonth() + 1)).slice(-2) + "/" +
        momento.getFullYear();
}

function conComa(valor, decimales) {
    return valor.toFixed(decimales).replace(".", ",");
}
