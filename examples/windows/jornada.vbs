' Un día en la almazara: pesadas, descarga, nivel, vaciado, deshacer y venta.
'
'   cscript //nologo jornada.vbs C:\AlmazaraDePrueba
'
' Escribe en la base de datos: pruébelo con una almazara de prueba recién creada. Las pesadas son del
' programa de la almazara; aquí las guarda este guion, por DAO si la base es de Access y DAO está en
' la máquina, y si no con el programa ambrelio.exe.
Option Explicit

Dim traza, base, tolva, deposito, codigo

Set traza = CreateObject("Ambrelio.Trazabilidad")
traza.Constructor WScript.Arguments(0), False
If Not traza.BaseAbierta Then
    WScript.Echo "No se puede abrir la base de datos de la almazara."
    WScript.Quit 1
End If
Set base = BasePorDAO(WScript.Arguments(0) & "\oliva.mdb")

' Tres pesadas en la tolva 1: partida, producto, socio, municipio, paraje y kilos.
GuardaPesada 1, 1, 1, 1, "LOMA", 1000
GuardaPesada 2, 2, 2, 2, "VEGA", 3000
GuardaPesada 3, 1, 3, 1, "LOMA", 500.5
Set tolva = traza.Tolva(1)
WScript.Echo "En la tolva 1: " & tolva.Partidas & " partidas, " & ConComa(tolva.Acumulado, 1) & " kg"

' Seis décimas de la tolva van al depósito 3 por la línea 1; el resto queda para la descarga siguiente.
Pasa
WScript.Echo "Descargada: " & SiNo(tolva.Descargar(3, 1, 0.6))
WScript.Echo "Kilos de la descarga 1: " & ConComa(tolva.Descarga(1).Kilos, 1)
WScript.Echo "Quedan en la tolva: " & ConComa(tolva.Acumulado, 1) & " kg"

' El aforo del depósito: hasta el nivel 50,0 son 20 litros por unidad; hasta 200,0, 30 litros.
Set deposito = traza.Deposito(3)
deposito.Nombre = "Bodega norte"
deposito.Formula = Array(Array(50, 0, 20), Array(200, -500, 30))
Pasa
WScript.Echo "Nivel anotado: " & SiNo(deposito.EntradaNivel(, 450))
WScript.Echo "En " & deposito.Nombre & ": " & ConComa(deposito.LitrosActual, 1) & " litros"

' Un trasiego al depósito 5, que se deshace.
Pasa
codigo = deposito.NuevoVaciado(5, 300)
WScript.Echo "Vaciado " & codigo & " al depósito 5: quedan " & ConComa(deposito.LitrosActual, 1) & " litros"
WScript.Echo "Deshecho: " & SiNo(deposito.DeshacerVaciado)
WScript.Echo "Otra vez " & ConComa(deposito.LitrosActual, 1) & " litros"

' Una venta: uso 2, lote, cliente, transportista y destino.
Pasa
codigo = deposito.NuevoVaciado(0, 250, , _
    Array(2, "L-25/1", Referente(1, "Aceites Peña"), Referente(2, "Transportes Martos"), "Jaén"))
WScript.Echo "Venta " & codigo & ": " & ConComa(deposito.Vaciado(codigo).Litros, 1) & " litros"
traza.Cerrar

' Dos apuntes del mismo segundo no tendrían orden.
Sub Pasa()
    WScript.Sleep 1100
End Sub

' La base de datos por DAO, o Nothing si el fichero no es de Access o no hay DAO.
Function BasePorDAO(fichero)
    Set BasePorDAO = Nothing
    On Error Resume Next
    Set BasePorDAO = CreateObject("DAO.DBEngine.36").Workspaces(0).OpenDatabase(fichero)
    If Err.Number <> 0 Then
        Err.Clear
        Set BasePorDAO = CreateObject("DAO.DBEngine.120").Workspaces(0).OpenDatabase(fichero)
    End If
End Function

Sub GuardaPesada(partida, producto, socio, municipio, paraje, kilos)
    Ejecuta "insert into PESADA (COOPERATIVA, PARTIDA, MEDIANA, CODPRO, CODSOC, CODMUN, PARAJE, TOLVA," & _
        " DESCARGA, PARCIALPESO) values (1, " & partida & ", 0, " & producto & ", " & socio & ", " & _
        municipio & ", '" & paraje & "', 1, " & traza.Tolva(1).DescargaEnCurso & ", " & _
        Replace(kilos, ",", ".") & ")"
End Sub

Sub Ejecuta(sql)
    Dim carpeta, programa
    If Not base Is Nothing Then
        base.Execute sql, 128
        Exit Sub
    End If
    carpeta = CreateObject("Scripting.FileSystemObject").GetParentFolderName(WScript.ScriptFullName)
    programa = """" & carpeta & "\..\bin\x86\ambrelio.exe"" sql --app """ & WScript.Arguments(0) & """ "
    If CreateObject("WScript.Shell").Run(programa & """" & sql & """", 0, True) <> 0 Then
        WScript.Echo "No se ha podido guardar la pesada."
        WScript.Quit 1
    End If
End Sub

' El código del primer cliente (1) o transportista (2), que se crea cuando no hay ninguno.
Function Referente(clase, nombre)
    Dim lista, nuevo
    lista = traza.ListaReferentes(clase)
    If IsArray(lista) Then
        Referente = lista(0)(0)
        Exit Function
    End If
    Set nuevo = traza.NuevoReferente(clase)
    nuevo.Nombre = nombre
    traza.GuardarReferente clase, nuevo
    Referente = nuevo.Codigo
End Function

Function SiNo(valor)
    If valor Then SiNo = "sí" Else SiNo = "no"
End Function

Function ConComa(valor, decimales)
    If IsNull(valor) Then
        ConComa = "-"
    Else
        ConComa = Replace(FormatNumber(valor, decimales, True, False, False), ".", ",")
    End If
End Function
