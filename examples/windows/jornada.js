// Un día en la almazara: pesadas, descarga, nivel, vaciado, deshacer y venta.
//
//   cscript //nologo jornada.js C:\AlmazaraDePrueba
//
// Escribe en la base de datos: pruébelo con una almazara de prueba recién creada. Las pesadas son del
// programa de la almazara; aquí las guarda este guion, por DAO si la base es de Access y DAO está en
// la máquina, y si no con el programa ambrelio.exe.

var carpeta = WScript.Arguments(0);
var traza = new ActiveXObject("Ambrelio.Trazabilidad");
traza.Constructor(carpeta, false);
if (!traza.BaseAbierta()) {
    WScript.Echo("No se puede abrir la base de datos de la almazara.");
    WScript.Quit(1);
}
var base = basePorDAO(carpeta + "\\oliva.mdb");

// Tres pesadas en la tolva 1: partida, producto, socio, municipio, paraje y kilos.
guardaPesada(1, 1, 1, 1, "LOMA", 1000);
guardaPesada(2, 2, 2, 2, "VEGA", 3000);
guardaPesada(3, 1, 3, 1, "LOMA", 500.5);
var tolva = traza.Tolva(1);
WScript.Echo("En la tolva 1: " + tolva.Partidas() + " partidas, " + conComa(tolva.Acumulado(), 1) + " kg");

// Seis décimas de la tolva van al depósito 3 por la línea 1; el resto queda para la descarga siguiente.
pasa();
WScript.Echo("Descargada: " + siNo(tolva.Descargar(3, 1, 0.6)));
WScript.Echo("Kilos de la descarga 1: " + conComa(tolva.Descarga(1).Kilos(), 1));
WScript.Echo("Quedan en la tolva: " + conComa(tolva.Acumulado(), 1) + " kg");

// El aforo del depósito: hasta el nivel 50,0 son 20 litros por unidad; hasta 200,0, 30 litros.
var deposito = traza.Deposito(3);
deposito.Nombre = "Bodega norte";
deposito.Formula = matriz([matriz([50, 0, 20]), matriz([200, -500, 30])]);
pasa();
WScript.Echo("Nivel anotado: " + siNo(deposito.EntradaNivel(null, 450)));
WScript.Echo("En " + deposito.Nombre + ": " + conComa(deposito.LitrosActual(), 1) + " litros");

// Un trasiego al depósito 5, que se deshace.
pasa();
var codigo = deposito.NuevoVaciado(5, 300);
WScript.Echo("Vaciado " + codigo + " al depósito 5: quedan " + conComa(deposito.LitrosActual(), 1) + " litros");
WScript.Echo("Deshecho: " + siNo(deposito.DeshacerVaciado()));
WScript.Echo("Otra vez " + conComa(deposito.LitrosActual(), 1) + " litros");

// Una venta: uso 2, lote, cliente, transportista y destino.
pasa();
codigo = deposito.NuevoVaciado(0, 250, null,
    matriz([2, "L-25/1", referente(1, "Aceites Peña"), referente(2, "Transportes Martos"), "Jaén"]));
WScript.Echo("Venta " + codigo + ": " + conComa(deposito.Vaciado(codigo).Litros(), 1) + " litros");
traza.Cerrar();

// Dos apuntes del mismo segundo no tendrían orden.
function pasa() {
    WScript.Sleep(1100);
}

// Una lista como la quiere la biblioteca; las de este lenguaje son otra cosa.
function matriz(elementos) {
    var lista = new ActiveXObject("Scripting.Dictionary");
    for (var i = 0; i < elementos.length; ++i) lista.Add(i, elementos[i]);
    return lista.Items();
}

// La base de datos por DAO, o null si el fichero no es de Access o no hay DAO.
function basePorDAO(fichero) {
    try {
        return new ActiveXObject("DAO.DBEngine.36").Workspaces(0).OpenDatabase(fichero);
    } catch (e) {
    }
    try {
        return new ActiveXObject("DAO.DBEngine.120").Workspaces(0).OpenDatabase(fichero);
    } catch (e) {
        return null;
    }
}

function guardaPesada(partida, producto, socio, municipio, paraje, kilos) {
    ejecuta("insert into PESADA (COOPERATIVA, PARTIDA, MEDIANA, CODPRO, CODSOC, CODMUN, PARAJE, TOLVA," +
        " DESCARGA, PARCIALPESO) values (1, " + partida + ", 0, " + producto + ", " + socio + ", " +
        municipio + ", '" + paraje + "', 1, " + traza.Tolva(1).DescargaEnCurso + ", " + kilos + ")");
}

function ejecuta(sql) {
    if (base !== null) {
        base.Execute(sql, 128);
        return;
    }
    var donde = new ActiveXObject("Scripting.FileSystemObject").GetParentFolderName(WScript.ScriptFullName);
    var programa = "\"" + donde + "\\..\\bin\\x86\\ambrelio.exe\" sql --app \"" + carpeta + "\" ";
    if (new ActiveXObject("WScript.Shell").Run(programa + "\"" + sql + "\"", 0, true) !== 0) {
        WScript.Echo("No se ha podido guardar la pesada.");
        WScript.Quit(1);
    }
}

// El código del primer cliente (1) o transportista (2), que se crea cuando no hay ninguno.
function referente(clase, nombre) {
    var lista = traza.ListaReferentes(clase);
    if (lista !== undefined) {
        return new VBArray(new VBArray(lista).getItem(0)).getItem(0);
    }
    var nuevo = traza.NuevoReferente(clase);
    nuevo.Nombre = nombre;
    traza.GuardarReferente(clase, nuevo);
    return nuevo.Codigo;
}

function siNo(valor) {
    return valor ? "sí" : "no";
}

function conComa(valor, decimales) {
    return valor === null ? "-" : valor.toFixed(decimales).replace(".", ",");
}
