// Pregunta a los sensores de nivel y anota lo que leen.
//
//   cscript //nologo sensores.js C:\Almazara
//
// En Vardex.ini, PortUDP de la sección SENSORES dice dónde está la pasarela de los sensores. Sin
// pasarela se puede probar con otra consola: ambrelio gateway --port 9090 --script lecturas.jsonl

var NO_HAY_SENSOR = 0, ERROR_LECTURA = 2, LECTURA_DISPONIBLE = 3;

var traza = new ActiveXObject("Ambrelio.Trazabilidad");
traza.Constructor(WScript.Arguments(0), false);
if (!traza.BaseAbierta()) {
    WScript.Echo("No se puede abrir la base de datos de la almazara.");
    WScript.Quit(1);
}
if (traza.PuertoUDP == "") {
    WScript.Echo("La almazara no tiene sensores: PortUDP de Vardex.ini está vacío.");
    WScript.Quit(1);
}

// Constructor ha empezado a preguntar. Las respuestas llegan mientras este hilo atiende sus mensajes:
// aquí, en WScript.Sleep; en un programa con ventanas, entre sus propios sucesos.
for (var espera = 0; traza.hayLecturaNivel(1) == NO_HAY_SENSOR && espera < 30000; espera += 100) {
    WScript.Sleep(100);
}
WScript.Sleep(1000);

var numero = 1;
for (var deposito = traza.Deposito(numero); deposito !== null; deposito = traza.Deposito(++numero)) {
    switch (traza.hayLecturaNivel(numero)) {
        case LECTURA_DISPONIBLE:
            WScript.Echo("Depósito " + numero + ": nivel " + traza.LecturaNivel(numero) + ", anotado: " +
                siNo(deposito.EntradaNivel(null, traza.LecturaNivel(numero))));
            break;
        case ERROR_LECTURA:
            WScript.Echo("Depósito " + numero + ": el sensor no responde");
            break;
        case NO_HAY_SENSOR:
            WScript.Echo("Depósito " + numero + ": sin sensor");
            break;
    }
}
traza.Cerrar();

function siNo(valor) {
    return valor ? "sí" : "no";
}
