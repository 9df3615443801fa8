' Abre una almazara y muestra lo que hay en sus tolvas y depósitos.
'
'   cscript //nologo abrir.vbs C:\Almazara
'
' La carpeta es la de la aplicación, donde están CLIEN.INI y Vardex.ini.
Option Explicit

Dim traza, tolva, deposito, numero

If WScript.Arguments.Count <> 1 Then
    WScript.Echo "Uso: cscript //nologo abrir.vbs CARPETA"
    WScript.Quit 2
End If

' Constructor no falla si la base no se abre: hay que preguntar por BaseAbierta.
Set traza = CreateObject("Ambrelio.Trazabilidad")
traza.Constructor WScript.Arguments(0), False
If Not traza.BaseAbierta Then
    WScript.Echo "No se puede abrir la base de datos de la almazara."
    WScript.Quit 1
End If

For numero = 1 To traza.MaximoTolvas
    Set tolva = traza.Tolva(numero)
    WScript.Echo "Tolva " & numero & ": descarga " & tolva.DescargaEnCurso & ", " & _
        tolva.Partidas & " partidas, " & ConComa(tolva.Acumulado, 1) & " kg"
Next

' Deposito devuelve Nothing detrás del último.
numero = 1
Set deposito = traza.Deposito(numero)
Do Until deposito Is Nothing
    WScript.Echo "Depósito " & numero & " (" & deposito.Nombre & "): " & _
        ConComa(deposito.LitrosActual, 1) & " litros, " & ConComa(deposito.KilosActual, 1) & " kg"
    numero = numero + 1
    Set deposito = traza.Deposito(numero)
Loop
traza.Cerrar

' Un número con sus decimales, o un guion cuando no se conoce (Null).
Function ConComa(valor, decimales)
    If IsNull(valor) Then
        ConComa = "-"
    Else
        ConComa = Replace(FormatNumber(valor, decimales, True, False, False), ".", ",")
    End If
End Function
