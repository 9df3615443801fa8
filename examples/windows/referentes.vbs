' Clientes y transportistas, y las historias de la almazara.
'
'   cscript //nologo referentes.vbs C:\AlmazaraDePrueba
'
' Crea un cliente, lo cambia y lo borra; después muestra lo que ha pasado en la almazara.
Option Explicit

Const Clientes = 1
Const Transportistas = 2

Dim traza, nuevo, cliente, fila

Set traza = CreateObject("Ambrelio.Trazabilidad")
traza.Constructor WScript.Arguments(0), False
If Not traza.BaseAbierta Then
    WScript.Echo "No se puede abrir la base de datos de la almazara."
    WScript.Quit 1
End If

Set nuevo = traza.NuevoReferente(Clientes)
nuevo.Nombre = "Almacenes Núñez"
nuevo.NIF = "B23100001"
nuevo.Info(1) = "Pedidos: 953 000 000"
WScript.Echo "Guardado: " & SiNo(traza.GuardarReferente(Clientes, nuevo))

' Un nombre que ya está es el error 3022: es lo único que este miembro no contesta con False.
On Error Resume Next
traza.GuardarReferente Clientes, nuevo
If Err.Number <> 0 Then WScript.Echo "Otra vez: error " & Err.Number
On Error GoTo 0

' Un referente es una copia: se carga, se cambia y se guarda entero.
Set cliente = traza.UnReferente(Clientes, nuevo.Codigo)
cliente.NIF = "B23100002"
WScript.Echo "Cambiado: " & SiNo(traza.GuardarReferente(Clientes, cliente))

Lista "Clientes", traza.ListaReferentes(Clientes, 1)
Lista "Transportistas", traza.ListaReferentes(Transportistas, 1)
WScript.Echo "Borrado: " & SiNo(traza.EliminarReferente(Clientes, nuevo.Codigo))

' Las filas de las tres historias empiezan igual: 0 momento, 1 número, 2 tolva, 3 depósito, 4 kilos,
' 5 litros y 6 depósito de destino.
WScript.Echo "Descargas:"
For Each fila In Filas(traza.HistoriaDescargas)
    WScript.Echo "  " & Momento(fila(0)) & "  tolva " & fila(2) & ", depósito " & fila(3) & ", " & ConComa(fila(4), 1) & " kg"
Next
WScript.Echo "Niveles:"
For Each fila In Filas(traza.HistoriaNiveles)
    WScript.Echo "  " & Momento(fila(0)) & "  depósito " & fila(3) & ", " & ConComa(fila(5), 1) & " litros"
Next
WScript.Echo "Vaciados:"
For Each fila In Filas(traza.HistoriaVaciados)
    WScript.Echo "  " & Momento(fila(0)) & "  depósito " & fila(3) & ", " & ConComa(fila(5), 1) & " litros, " & fila(10)
Next
traza.Cerrar

Sub Lista(titulo, referentes)
    Dim uno
    WScript.Echo titulo & ":"
    For Each uno In Filas(referentes)
        WScript.Echo "  " & uno(0) & "  " & uno(1) & "  " & uno(2)
    Next
End Sub

' Una lista sin filas llega como Empty.
Function Filas(lista)
    If IsEmpty(lista) Then Filas = Array() Else Filas = lista
End Function

Function Momento(cuando)
    Momento = Dos(Day(cuando)) & "/" & Dos(Month(cuando)) & "/" & Year(cuando) & " " & _
        Dos(Hour(cuando)) & ":" & Dos(Minute(cuando))
End Function

Function Dos(numero)
    Dos = Right("0" & numero, 2)
End Function

Function SiNo(valor)
    If valor Then SiNo = "sí" Else SiNo = "no"
End Function

Function ConComa(valor, decimales)
    ConComa = Replace(FormatNumber(valor, decimales, True, False, False), ".", ",")
End Function
