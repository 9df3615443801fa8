Attribute VB_Name = "Abrir"
' Abre una almazara y muestra lo que hay en sus tolvas y depósitos, en la ventana Inmediato.
'
' En Access o Excel: Archivo > Importar, y en Herramientas > Referencias marcar "Ambrelio" si se quiere
' la ayuda al escribir; entonces puede decirse As New Ambrelio.Trazabilidad. Un Office de 64 bits
' necesita la biblioteca de 64 bits.
'
'   AbrirAlmazara "C:\Almazara"
Option Explicit

Public Sub AbrirAlmazara(ByVal carpeta As String)
    Dim traza As Object, tolva As Object, deposito As Object, numero As Integer

    ' Constructor no falla si la base no se abre: hay que preguntar por BaseAbierta.
    Set traza = CreateObject("Ambrelio.Trazabilidad")
    traza.Constructor carpeta, False
    If Not traza.BaseAbierta Then
        Debug.Print "No se puede abrir la base de datos de la almazara."
        Exit Sub
    End If

    For numero = 1 To traza.MaximoTolvas
        Set tolva = traza.Tolva(numero)
        Debug.Print "Tolva " & numero & ": descarga " & tolva.DescargaEnCurso & ", " & _
            tolva.Partidas & " partidas, " & Format(tolva.Acumulado, "0.0") & " kg"
    Next

    ' Deposito devuelve Nothing detrás del último.
    numero = 1
    Set deposito = traza.Deposito(numero)
    Do Until deposito Is Nothing
        Debug.Print "Depósito " & numero & " (" & deposito.Nombre & "): " & _
            ConComa(deposito.LitrosActual) & " litros, " & ConComa(deposito.KilosActual) & " kg"
        numero = numero + 1
        Set deposito = traza.Deposito(numero)
    Loop
    traza.Cerrar
End Sub

' Un número con un decimal, o un guion cuando no se conoce (Null).
Private Function ConComa(ByVal valor As Variant) As String
    If IsNull(valor) Then ConComa = "-" Else ConComa = Format(valor, "0.0")
End Function
