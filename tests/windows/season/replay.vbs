' Lives through journals on a mill, as the command line does with `ambrelio journal`, and writes the
' same answers.
'
' arguments: the application folder; dao or own, for who stores the weighings; journals
Option Explicit

Dim mill, database, kept, file, i

Set mill = CreateObject("Ambrelio.Trazabilidad")
mill.Constructor WScript.Arguments(0), False
file = WScript.Arguments(0) & "\oliva.mdb"
If WScript.Arguments(1) = "dao" Then
    Set database = CreateObject("DAO.DBEngine.36").Workspaces(0).OpenDatabase(file, False, False, ";pwd=")
End If

For i = 2 To WScript.Arguments.Count - 1
    Journal.Open WScript.Arguments(i)
    Do While Journal.NextLine
        On Error Resume Next
        CarryOut
        If Err.Number <> 0 Then Journal.AnswerError Err.Number, Err.Description
        On Error GoTo 0
    Loop
Next
mill.Cerrar

Sub CarryOut()
    Select Case Journal.Kind
        Case "pesada": Store
        Case "let": SetProperty
        Case "call": CallMember
    End Select
End Sub

Sub Store()
    Dim hopper, discharge
    hopper = Journal.Column("TOLVA")
    discharge = 0
    If hopper > 0 Then discharge = mill.Tolva(hopper).DescargaEnCurso
    If IsObject(database) Then
        database.Execute Journal.Insertion(discharge), 128
    Else
        Journal.Store file, discharge
    End If
    Journal.Answer True
End Sub

Sub SetProperty()
    Dim tank
    Select Case Journal.Owner & "." & Journal.Member
        Case "Deposito.Nombre"
            Set tank = mill.Deposito(Journal.Number)
            tank.Nombre = Journal.Value
        Case "Deposito.Formula"
            Set tank = mill.Deposito(Journal.Number)
            tank.Formula = Journal.Value
        Case "r.Nombre"
            kept.Nombre = Journal.Value
        Case "r.NIF"
            kept.NIF = Journal.Value
        Case Else
            Err.Raise 438, , "No property " & Journal.Owner & "." & Journal.Member
    End Select
    Journal.Answer Empty
End Sub

Sub CallMember()
    Dim a, n, r, o
    a = Journal.Arguments
    n = UBound(a) + 1
    Select Case Journal.Owner
        Case "Tolva": Set o = mill.Tolva(Journal.Number)
        Case "TvaInter": Set o = mill.TvaInter(Journal.Number)
        Case "Deposito": Set o = mill.Deposito(Journal.Number)
        Case Else: Set o = mill
    End Select
    Select Case Journal.Member
        Case "Descargar"
            If n = 3 Then r = o.Descargar(a(0), a(1), a(2)) Else r = o.Descargar(a(0), a(1))
        Case "RestaurarCarga": r = o.RestaurarCarga
        Case "DescargarEn": r = o.DescargarEn(a(0))
        Case "Trasegar"
            If n = 3 Then r = o.Trasegar(a(0), a(1), a(2)) Else r = o.Trasegar(a(0), a(1))
        Case "EntradaNivel"
            If n = 3 Then r = o.EntradaNivel(, a(1), a(2)) Else r = o.EntradaNivel(, a(1))
        Case "EntradaDensidad": r = o.EntradaDensidad(a(0))
        Case "EliminarUltimoNivel": r = o.EliminarUltimoNivel
        Case "NuevoVaciado"
            If IsArray(a(3)) Then r = o.NuevoVaciado(a(0), a(1), , a(3)) Else r = o.NuevoVaciado(a(0), a(1))
        Case "DeshacerVaciado": r = o.DeshacerVaciado
        Case "LitrosActual": r = o.LitrosActual
        Case "NivelActual": r = o.NivelActual
        Case "KilosActual": r = o.KilosActual
        Case "Acumulado": r = o.Acumulado
        Case "Composicion": r = o.Composicion(a(0))
        Case "Historial": r = o.Historial
        Case "HistoriaDescargas": r = o.HistoriaDescargas
        Case "HistoriaNiveles": r = o.HistoriaNiveles
        Case "HistoriaVaciados": r = o.HistoriaVaciados
        Case "ListaReferentes": r = o.ListaReferentes(a(0), a(1))
        Case "ListaDestinoVenta": r = o.ListaDestinoVenta
        Case "GuardarReferente": r = o.GuardarReferente(a(0), kept)
        Case "NuevoReferente"
            Set kept = o.NuevoReferente(a(0))
            Journal.AnswerObject "Referente"
            Exit Sub
        Case Else
            Err.Raise 438, , "No method " & Journal.Owner & "." & Journal.Member
    End Select
    Journal.Answer r, a
End Sub
