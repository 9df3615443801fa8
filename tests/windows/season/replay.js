// Lives through journals on a mill, as the command line does with `ambrelio journal`, and writes the
// same answers, but for what members write into their arguments: a script of this language passes
// values only.
//
// arguments: the application folder; dao or own, for who stores the weighings; journals

var mill = new ActiveXObject("Ambrelio.Trazabilidad");
mill.Constructor(WScript.Arguments(0), false);
var file = WScript.Arguments(0) + "\\oliva.mdb";
var database = null;
if (WScript.Arguments(1) == "dao") {
    var workspace = new ActiveXObject("DAO.DBEngine.36").Workspaces(0);
    database = workspace.OpenDatabase(file, false, false, ";pwd=");
}
var kept = null;

var setters = {
    "Deposito.Nombre": function () { var tank = mill.Deposito(Journal.Number); tank.Nombre = Journal.Value; },
    "Deposito.Formula": function () { var tank = mill.Deposito(Journal.Number); tank.Formula = Journal.Value; },
    "r.Nombre": function () { kept.Nombre = Journal.Value; },
    "r.NIF": function () { kept.NIF = Journal.Value; }
};

var methods = {
    Descargar: function (o, a) { return a.length == 3 ? o.Descargar(a[0], a[1], a[2]) : o.Descargar(a[0], a[1]); },
    RestaurarCarga: function (o) { return o.RestaurarCarga(); },
    DescargarEn: function (o, a) { return o.DescargarEn(a[0]); },
    Trasegar: function (o, a) { return a.length == 3 ? o.Trasegar(a[0], a[1], a[2]) : o.Trasegar(a[0], a[1]); },
    EntradaNivel: function (o, a) { return a.length == 3 ? o.EntradaNivel(null, a[1], a[2]) : o.EntradaNivel(null, a[1]); },
    EntradaDensidad: function (o, a) { return o.EntradaDensidad(a[0]); },
    EliminarUltimoNivel: function (o) { return o.EliminarUltimoNivel(); },
    NuevoVaciado: function (o, a) {
        return a[3] === undefined ? o.NuevoVaciado(a[0], a[1]) : o.NuevoVaciado(a[0], a[1], null, a[3]);
    },
    DeshacerVaciado: function (o) { return o.DeshacerVaciado(); },
    LitrosActual: function (o) { return o.LitrosActual(); },
    NivelActual: function (o) { return o.NivelActual(); },
    KilosActual: function (o) { return o.KilosActual(); },
    Acumulado: function (o) { return o.Acumulado(); },
    Composicion: function (o, a) { return o.Composicion(a[0]); },
    Historial: function (o) { return o.Historial(); },
    HistoriaDescargas: function (o) { return o.HistoriaDescargas(); },
    HistoriaNiveles: function (o) { return o.HistoriaNiveles(); },
    HistoriaVaciados: function (o) { return o.HistoriaVaciados(); },
    ListaReferentes: function (o, a) { return o.ListaReferentes(a[0], a[1]); },
    ListaDestinoVenta: function (o) { return o.ListaDestinoVenta(); },
    GuardarReferente: function (o, a) { return o.GuardarReferente(a[0], kept); }
};

function store() {
    var hopper = Journal.Column("TOLVA");
    var discharge = hopper > 0 ? mill.Tolva(hopper).DescargaEnCurso : 0;
    if (database !== null) {
        database.Execute(Journal.Insertion(discharge), 128);
    } else {
        Journal.Store(file, discharge);
    }
    Journal.Answer(true);
}

function owner() {
    switch (Journal.Owner) {
        case "Tolva": return mill.Tolva(Journal.Number);
        case "TvaInter": return mill.TvaInter(Journal.Number);
        case "Deposito": return mill.Deposito(Journal.Number);
        default: return mill;
    }
}

function call() {
    var a = new VBArray(Journal.Arguments).toArray();
    if (Journal.Member == "NuevoReferente") {
        kept = mill.NuevoReferente(a[0]);
        Journal.AnswerObject("Referente");
        return;
    }
    Journal.Answer(methods[Journal.Member](owner(), a));
}

function carryOut() {
    switch (Journal.Kind) {
        case "pesada": store(); break;
        case "call": call(); break;
        case "let":
            setters[Journal.Owner + "." + Journal.Member]();
            Journal.Answer(undefined);
            break;
    }
}

for (var i = 2; i < WScript.Arguments.length; ++i) {
    Journal.Open(WScript.Arguments(i));
    while (Journal.NextLine()) {
        try {
            carryOut();
        } catch (e) {
            Journal.AnswerError(e.number, e.message);
        }
    }
}
mill.Cerrar();
