' A host that knows nothing but the interface: every member at least once, with the types of what it
' gives, then what goes wrong. The host's own tables are written by DAO.
'
' argument: the application folder of a mill with 4 hoppers, 2 intermediate ones and 6 tanks
Option Explicit

Dim checks, failures, mill, database, hopper, tank, discharge, emptying, reading, person, other, list
Dim a, b, c, again

checks = 0
failures = 0
' An error that no Expect asks for is told by the next check.
On Error Resume Next

' --- Opening -----------------------------------------------------------------------------------------
Set mill = CreateObject("Ambrelio.Trazabilidad")
Check "before Constructor", "Boolean False", mill.BaseAbierta
CheckNothing "Deposito before Constructor", mill.Deposito(1)
Check "Constructor", "Empty", mill.Constructor(WScript.Arguments(0), False)
Check "BaseAbierta", "Boolean True", mill.BaseAbierta
Check "Constructor with Info", "Empty", mill.Constructor(WScript.Arguments(0), False, "ignored")
Check "MaximoTolvas", "Integer 4", mill.MaximoTolvas
CheckNothing "Tolva(0)", mill.Tolva(0)
CheckNothing "Tolva(5)", mill.Tolva(5)
CheckNothing "TvaInter(3)", mill.TvaInter(3)
CheckNothing "Deposito(7)", mill.Deposito(7)
CheckNothing "Deposito(-1)", mill.Deposito(-1)

' --- The host's tables ---------------------------------------------------------------------------------
Set database = CreateObject("DAO.DBEngine.36").Workspaces(0).OpenDatabase(WScript.Arguments(0) & "\oliva.mdb")
database.Execute "insert into SOCIO (CODSOC, NOMSOC) values (1, 'Ana Ruiz')", 128
database.Execute "insert into SOCIO (CODSOC, NOMSOC) values (2, 'Luis Mora')", 128
database.Execute "insert into PRODUCTO (CODPRO, NOMPRO) values (1, 'Picual')", 128
database.Execute "insert into PRODUCTO (CODPRO, NOMPRO) values (2, 'Hojiblanca')", 128
database.Execute "insert into MUNICIPIO (CODMUN, NOMMUN) values (1, 'Baena')", 128
database.Execute "insert into MUNICIPIO (CODMUN, NOMMUN) values (2, 'Luque')", 128
Weigh 1, 1, 1, "LOMA", 1, 1, "1000"
Weigh 2, 2, 2, "VEGA", 1, 1, "3000"
Weigh 3, 1, 1, "LOMA", -1, 0, "500.5"
Weigh 4, 1, 1, "LOMA", -2, 0, "500.5"

' --- Hoppers -------------------------------------------------------------------------------------------
Set hopper = mill.Tolva(1)
Check "Tolva.DescargaEnCurso", "Long 1", hopper.DescargaEnCurso
Check "Tolva.MomentoInicio", "Date 2025-11-03 08:00:00", hopper.MomentoInicio
Check "Tolva.Partidas", "Long 2", hopper.Partidas
Check "Tolva.Acumulado", "Double 4000", hopper.Acumulado
Check "Tolva.Composicion(1)", "[[Long 1, String Ana Ruiz, Double 25, Double 1000], " & _
    "[Long 2, String Luis Mora, Double 75, Double 3000]]", hopper.Composicion(1)
Check "Tolva.Composicion(9)", "Empty", hopper.Composicion(9)
Check "Trasegar", "Boolean True", mill.Trasegar(1, 2, 0.25)
Check "what came over", "Double 1000", mill.Tolva(2).Acumulado
Check "Trasegar back", "Boolean True", mill.Trasegar(2, 1)
Check "Trasegar into no hopper", "Boolean False", mill.Trasegar(1, 5)

WScript.Sleep 60000
c = 0.6
Check "Tolva.Descargar", "Boolean True", hopper.Descargar(3, 1, c)
Check "a share that was right stays", "Double 0.6", c
Check "Tolva.Descargar, negative", "Boolean False", hopper.Descargar(3, 1, -0.5)
c = 2.5
Check "Tolva.Descargar, too much", "Boolean True", mill.Tolva(2).Descargar(3, 1, c)
Check "becomes all of it", "Double 1", c
Check "Tolva.RestaurarCarga", "Boolean True", mill.Tolva(2).RestaurarCarga
Check "the first discharge again", "Long 1", mill.Tolva(2).DescargaEnCurso
CheckNothing "Tolva.Descarga(9)", hopper.Descarga(9)
Set discharge = hopper.Descarga(1)
Check "Descarga.Tolva", "Integer 1", discharge.Tolva
Check "Descarga.Codigo", "Long 1", discharge.Codigo
Check "Descarga.Kilos", "Double 2400", discharge.Kilos
Check "Descarga.MomentoDesde", "Date 2025-11-03 08:00:00", discharge.MomentoDesde
Check "Descarga.MomentoHasta", "Date 2025-11-03 08:01:00", discharge.MomentoHasta
Check "Descarga.MomentoHasta, open", "Date 1899-12-30 00:00:00", hopper.Descarga(2).MomentoHasta
Check "Descarga.Composicion(2)", "[[Integer 1, String Picual, Double 25, Double 600], " & _
    "[Integer 2, String Hojiblanca, Double 75, Double 1800]]", discharge.Composicion(2)

' --- Intermediate hoppers --------------------------------------------------------------------------------
Check "TvaInter.Partidas", "Long 1", mill.TvaInter(1).Partidas
Check "TvaInter.Acumulado", "Long 500", mill.TvaInter(2).Acumulado
Check "TvaInter.DescargarEn", "Boolean True", mill.TvaInter(1).DescargarEn(2)
Check "what it brought", "Double 500.5", mill.Tolva(2).Acumulado
Check "TvaInter.DescargarEn no hopper", "Boolean False", mill.TvaInter(1).DescargarEn(5)

' --- Tanks -----------------------------------------------------------------------------------------------
Set tank = mill.Deposito(3)
tank.Nombre = "Norte"
Check "Deposito.Nombre", "String Norte", tank.Nombre
Check "Deposito.Nombre, none", "String ", mill.Deposito(4).Nombre
tank.Formula = Array(Array(50, 0, 20), Array(200, -500, 30))
Check "Deposito.Formula", "[[Double 50, Double 0, Double 20, Double 0, Double 0], " & _
    "[Double 200, Double -500, Double 30, Double 0, Double 0]]", tank.Formula
tank.Formula = Empty
Check "Deposito.Formula, cleared", "Empty", tank.Formula
tank.Formula = Array(Array(50, 0, 20), Array(200, -500, 30))
Check "Deposito.Capacidad", "Double 900", tank.Capacidad(450)
Check "Deposito.EntradaNivel", "Boolean True", tank.EntradaNivel(DateSerial(2025, 11, 3) + TimeSerial(10, 0, 0), 450)
Check "Deposito.EntradaNivel, litres", "Boolean True", tank.EntradaNivel(DateSerial(2025, 11, 3) + TimeSerial(10, 30, 0), , 1234.5)
Check "Deposito.EntradaNivel, no oil", "Boolean False", mill.Deposito(4).EntradaNivel(, 450)
Check "Deposito.EntradaDensidad", "Boolean True", tank.EntradaDensidad(0.916, 1)
Check "Deposito.EntradaDensidad, last", "Boolean True", tank.EntradaDensidad(0.917)
Check "Deposito.EntradaDensidad, none", "Boolean False", tank.EntradaDensidad(0.916, 9)
Check "Deposito.EliminarUltimoNivel", "Boolean True", tank.EliminarUltimoNivel
Check "Deposito.NivelActual", "Long 450", tank.NivelActual
Check "Deposito.NivelActual, unknown", "Null", mill.Deposito(4).NivelActual
Check "Deposito.LitrosActual", "Double 900", tank.LitrosActual
Check "Deposito.KilosActual", "Double 2400", tank.KilosActual
CheckNothing "Deposito.Nivel(9)", tank.Nivel(9)
WScript.Sleep 3 * 3600000
a = 300.0
Check "Deposito.NuevoVaciado", "Long 1", tank.NuevoVaciado(5, a)
Check "Deposito.NuevoVaciado, sale", "Long 2", _
    tank.NuevoVaciado(0, 100, DateSerial(2025, 11, 3) + TimeSerial(13, 0, 0), Array(2, "L-7", 1, 1, "Jaén"))
Check "Deposito.NuevoVaciado, refused", "Long 0", tank.NuevoVaciado(0, 100)
Check "Deposito.UltimoVaciado", "Long 2", tank.UltimoVaciado
Check "Deposito.UltimoMovimiento", "Integer 2", tank.UltimoMovimiento(a, b, c)
Check "litres of it", "Double 500", a
Check "level of it", "Null", b
Check "moment of it", "Date 2025-11-03 13:00:00", c
Check "Deposito.Historial", "[[Date 2025-11-03 08:01:00, Long 1, Integer 1, Long 1], " & _
    "[Date 2025-11-03 10:00:00, Long 3, Integer 3, Long 1], " & _
    "[Date 2025-11-03 11:01:00, Long 2, Integer 3, Long 1], " & _
    "[Date 2025-11-03 13:00:00, Long 2, Integer 3, Long 2]]", tank.Historial
Check "Deposito.Composicion(1)", "[[Long 1, String Ana Ruiz, Double 25, Double 125], " & _
    "[Long 2, String Luis Mora, Double 75, Double 375]]", tank.Composicion(1)

' --- Readings --------------------------------------------------------------------------------------------
Set reading = tank.Nivel(1)
Check "Nivel.Deposito", "Integer 3", reading.Deposito
Check "Nivel.Codigo", "Long 1", reading.Codigo
Check "Nivel.Momento", "Date 2025-11-03 10:00:00", reading.Momento
Check "Nivel.Nivel", "Long 450", reading.Nivel
Check "Nivel.Litros", "Double 900", reading.Litros
Check "Nivel.GetCotasMomento", "Boolean True", reading.GetCotasMomento(a, b)
Check "earliest", "Date 2025-11-03 08:01:00", a
Check "latest", "Date 2025-11-03 11:01:00", b
reading.Momento = DateSerial(2025, 11, 3) + TimeSerial(10, 15, 0)
Check "Nivel.Momento, moved", "Date 2025-11-03 10:15:00", tank.Nivel(1).Momento
Set reading = tank.Nivel(1)
reading.Nivel = 460
reading.Litros = 920
Check "Nivel.Nivel, corrected", "Long 460", tank.Nivel(1).Nivel
Check "Nivel.Litros, corrected", "Double 920", tank.Nivel(1).Litros

' --- Emptyings -------------------------------------------------------------------------------------------
CheckNothing "Deposito.Vaciado(9)", tank.Vaciado(9)
Set emptying = tank.Vaciado(2)
Check "Vaciado.Deposito", "Integer 3", emptying.Deposito
Check "Vaciado.Codigo", "Long 2", emptying.Codigo
Check "Vaciado.Uso", "Integer 2", emptying.Uso
Check "Vaciado.Cliente", "Long 1", emptying.Cliente
Check "Vaciado.Transportista", "Long 1", emptying.Transportista
Check "Vaciado.DestinoVenta", "String Jaén", emptying.DestinoVenta
Check "Vaciado.Lote", "String L-7", emptying.Lote
Check "Vaciado.Litros", "Double 100", emptying.Litros
Check "Vaciado.Momento", "Date 2025-11-03 13:00:00", emptying.Momento
Check "Vaciado.Destino", "Integer 0", emptying.Destino
Check "Vaciado.Destino, a tank", "Integer 5", tank.Vaciado(1).Destino
Check "Vaciado.GetCotasMomento", "Boolean True", emptying.GetCotasMomento(a, b)
Check "earliest", "Date 2025-11-03 11:01:00", a
Check "no latest", "Null", b
Check "Vaciado.fijarUso", "Boolean True", emptying.fijarUso(2, 1, 1, "Córdoba")
Check "Vaciado.fijarUso, refused", "Boolean False", emptying.fijarUso(1, 4, 0, "")
emptying.Lote = "L-8"
emptying.Momento = DateSerial(2025, 11, 3) + TimeSerial(13, 30, 0)
Set emptying = tank.Vaciado(2)
Check "Vaciado.DestinoVenta, set", "String Córdoba", emptying.DestinoVenta
Check "Vaciado.Lote, set", "String L-8", emptying.Lote
Check "Vaciado.Momento, moved", "Date 2025-11-03 13:30:00", emptying.Momento
Check "Vaciado.Composicion(3)", "[[Integer 1, String Baena, Double 25, Double 25], " & _
    "[Integer 2, String Luque, Double 75, Double 75]]", emptying.Composicion(3)
Check "Vaciado.Composicion(5)", "[[Integer 1, String 1, Double 100, Double 100]]", emptying.Composicion(5)

' --- Referents -------------------------------------------------------------------------------------------
Set person = mill.NuevoReferente(1)
Check "Referente.Codigo", "Long 1", person.Codigo
Check "Referente.esNuevo", "Boolean True", person.esNuevo
Check "Referente.datosValidos", "Boolean False", person.datosValidos
Check "GuardarReferente, no name", "Boolean False", mill.GuardarReferente(1, person)
person.Nombre = "Aceites Peña"
person.NIF = "B14000000"
person.Info(2) = "Tel. 953 000 000"
a = 2
Check "Referente.Info", "String Tel. 953 000 000", person.Info(a)
Check "Referente.Info(4)", "String ", person.Info(4)
Check "Referente.datosValidos, named", "Boolean True", person.datosValidos
Check "GuardarReferente", "Boolean True", mill.GuardarReferente(1, person)
Check "UnReferente", "String Aceites Peña", mill.UnReferente(1, 1).Nombre
CheckNothing "UnReferente, none", mill.UnReferente(1, 77)
Set other = CreateObject("Ambrelio.Referente")
other.Codigo = 1
other.Nombre = "Portes Gil"
Check "a carrier of the host's making", "Boolean True", mill.GuardarReferente(2, other)
Check "ListaReferentes", "[[Long 1, String Aceites Peña, String B14000000]]", mill.ListaReferentes(1)
Check "ListaReferentes by name", "[[Long 1, String Portes Gil, String ]]", mill.ListaReferentes(2, 1)
Check "EliminarReferente, none", "Boolean False", mill.EliminarReferente(2, 7)

' --- Histories -------------------------------------------------------------------------------------------
Check "ListaDestinoVenta", "[String Córdoba]", mill.ListaDestinoVenta
Check "HistoriaDescargas", "[[Date 2025-11-03 08:01:00, Long 1, Integer 1, Integer 3, Double 2400, Empty, Empty]]", _
    mill.HistoriaDescargas(, , 1, 3)
Check "HistoriaDescargas of a hopper", "Empty", mill.HistoriaDescargas(, , 3)
Check "HistoriaNiveles", "[[Date 2025-11-03 10:15:00, Long 1, Empty, Integer 3, Empty, Double 920, Empty]]", _
    mill.HistoriaNiveles(, , 3)
list = mill.HistoriaVaciados(DateSerial(2025, 11, 3) + TimeSerial(13, 0, 0), DateSerial(2025, 11, 3))
Check "HistoriaVaciados", "[[Date 2025-11-03 13:30:00, Long 2, Empty, Integer 3, Empty, Double 100, Integer 0, " & _
    "String L-8, Integer 2, Long 1, String Aceites Peña, Long 1, String Portes Gil, String Córdoba]]", list
Check "EliminarReferente", "Boolean True", mill.EliminarReferente(2, 1)
list = mill.HistoriaVaciados
Expect "HistoriaVaciados, carrier gone", 91

' --- Sensors ---------------------------------------------------------------------------------------------
Check "hayLecturaNivel", "Long 0", mill.hayLecturaNivel(1)
Check "LecturaNivel, no tank", "Empty", mill.LecturaNivel(7)
mill.ObjetoActiveX = "Sondas.Lector"
Check "ObjetoActiveX", "String Sondas.Lector", mill.ObjetoActiveX
mill.ObjetoActiveX = ""
mill.PuertoUDP = ""
Check "PuertoUDP", "String ", mill.PuertoUDP
mill.TimeOutUDP = 500
mill.IntervaloPolling = 1000
mill.TiempoControlNivel = 12
mill.MargenControlNivel = 3
mill.SalvarValores
mill.TimeOutUDP = 7
mill.RecargaValores
Check "TimeOutUDP", "Long 500", mill.TimeOutUDP
Check "IntervaloPolling", "Long 1000", mill.IntervaloPolling
Check "TiempoControlNivel", "Long 12", mill.TiempoControlNivel
Check "MargenControlNivel", "Long 3", mill.MargenControlNivel

' --- What goes wrong ---------------------------------------------------------------------------------------
mill.Tolva "uno"
Expect "a word for a number", 13
mill.Tolva Null
Expect "Null for a number", 94
mill.Tolva 70000
Expect "a number beyond its type", 6
mill.Tolva
Expect "too few arguments", 450
mill.Tolva 1, 2
Expect "too many arguments", 450
mill.UnReferente , 1
Expect "an argument that is not optional", 449
mill.NoHay
Expect "no such member", 438
mill.GuardarReferente 1, mill
Expect "an object of another class", 13
Set other = CreateObject("Ambrelio.Tolva")
Expect "a class that is not creatable", 429
mill.GuardarReferente 1, person
Expect "a name that is taken", 3022
mill.NuevoReferente 3
ExpectSome "no such catalogue"
Check "Deposito.DeshacerVaciado", "Boolean True", tank.DeshacerVaciado
a = emptying.Litros
Expect "an emptying that is gone", 3021

' The library goes on after DAO has failed in the middle of it.
Set other = CreateObject("Ambrelio.DaoStandIn.Control")
other.FailAt 1, 3218
a = tank.LitrosActual
Expect "DAO fails", 3218
Check "and then not", "Double 620", tank.LitrosActual

' Two roots of one thread have one connection.
Set again = CreateObject("Ambrelio.Trazabilidad")
Check "a second root", "Boolean True", again.BaseAbierta
Set again = Nothing
Check "ends, and closes for both", "Boolean False", mill.BaseAbierta
mill.RecargaValores
Check "open again", "Boolean True", mill.BaseAbierta
Check "an object from before goes on", "String Norte", tank.Nombre
Check "IniciarCampaña", "Boolean True", mill.IniciarCampaña
Check "nothing has happened yet", "Empty", mill.HistoriaVaciados
mill.Cerrar
Check "Cerrar", "Boolean False", mill.BaseAbierta
CheckNothing "a tank of a closed database", mill.Deposito(1)
a = tank.LitrosActual
ExpectSome "a tank from before it was closed"
mill.Cerrar
Check "Cerrar once more", "Boolean False", mill.BaseAbierta

WScript.Echo checks & " checks, " & failures & " failed"
If failures > 0 Then WScript.Quit 1

' --- How things are compared -------------------------------------------------------------------------------
Sub Check(name, expected, got)
    checks = checks + 1
    Unexpected name
    If Shown(got) <> expected Then Fail name, expected, Shown(got)
End Sub

Sub CheckNothing(name, got)
    checks = checks + 1
    Unexpected name
    If Not got Is Nothing Then Fail name, "Nothing", "an object"
End Sub

Sub Expect(name, number)
    checks = checks + 1
    If Err.Number <> number Then Fail name, "error " & number, "error " & Err.Number & " " & Err.Description
    If Err.Number <> 0 And Err.Description = "" Then Fail name, "a description", "none"
    Err.Clear
End Sub

Sub ExpectSome(name)
    checks = checks + 1
    If Err.Number = 0 Then Fail name, "an error", "none"
    Err.Clear
End Sub

Sub Unexpected(name)
    If Err.Number <> 0 Then Fail "before: " & name, "no error", "error " & Err.Number & " " & Err.Description
    Err.Clear
End Sub

Sub Fail(name, expected, got)
    failures = failures + 1
    WScript.Echo name & ": expected " & expected & ", got " & got
End Sub

Function Shown(value)
    Dim i, text
    Select Case VarType(value)
        Case 0: Shown = "Empty"
        Case 1: Shown = "Null"
        Case 7: Shown = "Date " & Year(value) & "-" & Two(Month(value)) & "-" & Two(Day(value)) & " " & _
            Two(Hour(value)) & ":" & Two(Minute(value)) & ":" & Two(Second(value))
        Case 8: Shown = "String " & value
        Case 11
            If value Then Shown = "Boolean True" Else Shown = "Boolean False"
        Case 2, 3, 5: Shown = TypeName(value) & " " & Replace(CStr(value), ",", ".")
        Case Else
            If Not IsArray(value) Then
                Shown = "VarType " & VarType(value)
                Exit Function
            End If
            For i = 0 To UBound(value)
                If i > 0 Then text = text & ", "
                text = text & Shown(value(i))
            Next
            Shown = "[" & text & "]"
    End Select
End Function

Function Two(number)
    Two = Right("0" & number, 2)
End Function

Sub Weigh(lot, product, member, place, hopper, discharge, kilos)
    database.Execute "insert into PESADA (COOPERATIVA, PARTIDA, MEDIANA, CODPRO, CODSOC, CODMUN, PARAJE, TOLVA, " & _
        "DESCARGA, PARCIALPESO) values (1, " & lot & ", 0, " & product & ", " & member & ", " & product & ", '" & _
        place & "', " & hopper & ", " & discharge & ", " & kilos & ")", 128
End Sub
