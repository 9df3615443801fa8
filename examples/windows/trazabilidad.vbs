' De quién y de qué es el aceite de la última venta.
'
'   cscript //nologo trazabilidad.vbs C:\Almazara
Option Explicit

Dim traza, venta, clase, titulos

Set traza = CreateObject("Ambrelio.Trazabilidad")
traza.Constructor WScript.Arguments(0), False
If Not traza.BaseAbierta Then
    WScript.Echo "No se puede abrir la base de datos de la almazara."
    WScript.Quit 1
End If

Set venta = UltimaVenta
If venta Is Nothing Then
    WScript.Echo "No hay ninguna venta."
    WScript.Quit 0
End If
WScript.Echo "Venta del " & Fecha(venta.Momento) & ", depósito " & venta.Deposito & ", lote " & venta.Lote
WScript.Echo ConComa(venta.Litros, 1) & " litros para " & traza.UnReferente(1, venta.Cliente).Nombre & _
    ", " & venta.DestinoVenta & ", con " & traza.UnReferente(2, venta.Transportista).Nombre

titulos = Array("Socio", "Producto", "Municipio", "Paraje", "Línea")
For clase = 1 To 5
    Tabla titulos(clase - 1), venta.Composicion(clase)
Next
traza.Cerrar

' La venta más reciente de todos los depósitos, o Nothing.
Function UltimaVenta()
    Dim numero, deposito, codigo, vaciado
    Set UltimaVenta = Nothing
    numero = 1
    Set deposito = traza.Deposito(numero)
    Do Until deposito Is Nothing
        For codigo = 1 To deposito.UltimoVaciado
            Set vaciado = deposito.Vaciado(codigo)
            If vaciado.Uso = 2 Then
                If UltimaVenta Is Nothing Then
                    Set UltimaVenta = vaciado
                ElseIf vaciado.Momento > UltimaVenta.Momento Then
                    Set UltimaVenta = vaciado
                End If
            End If
        Next
        numero = numero + 1
        Set deposito = traza.Deposito(numero)
    Loop
End Function

' Una composición es una lista de filas de clave, nombre, tanto por ciento y litros, o Empty.
Sub Tabla(titulo, filas)
    Dim fila
    WScript.Echo
    WScript.Echo Izquierda(titulo, 10) & Izquierda("Nombre", 30) & Derecha("%", 9) & Derecha("Litros", 12)
    If IsEmpty(filas) Then Exit Sub
    For Each fila In filas
        WScript.Echo Izquierda(fila(0), 10) & Izquierda(fila(1), 30) & _
            Derecha(ConComa(fila(2), 3), 9) & Derecha(ConComa(fila(3), 2), 12)
    Next
End Sub

Function Izquierda(texto, ancho)
    Izquierda = Left(texto & Space(ancho), ancho)
End Function

Function Derecha(texto, ancho)
    Derecha = Right(Space(ancho) & texto, ancho)
End Function

Function Fecha(momento)
    Fecha = Right("0" & Day(momento), 2) & "/" & Right("0" & Month(momento), 2) & "/" & Year(momento)
End Function

Function ConComa(valor, decimales)
    ConComa = Replace(FormatNumber(valor, decimales, True, False, False), ".", ",")
End Function
