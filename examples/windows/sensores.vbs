' Pregunta a los sensores de nivel y anota lo que leen.
'
'   cscript //nologo sensores.vbs C:\Almazara
'
' En Vardex.ini, PortUDP de la sección SENSORES dice dónde está la pasarela de los sensores. Sin
' pasarela se puede probar con otra consola: ambrelio gateway --port 9090 --script lecturas.jsonl
Option Explicit

Const NoHaySensor = 0
Const ErrorLectura = 2
Const LecturaDisponible = 3

Dim traza, deposito, numero, espera

Set traza = CreateObject("Ambrelio.Trazabilidad")
traza.Constructor WScript.Arguments(0), False
If Not traza.BaseAbierta Then
    WScript.Echo "No se puede abrir la base de datos de la almazara."
    WScript.Quit 1
End If
If traza.PuertoUDP = "" Then
    WScript.Echo "La almazara no tiene sensores: PortUDP de Vardex.ini está vacío."
    WScript.Quit 1
End If

' Constructor ha empezado a preguntar. Las respuestas llegan mientras este hilo atiende sus mensajes:
' aquí, en WScript.Sleep; en un programa con ventanas, entre sus propios sucesos.
Do While traza.hayLecturaNivel(1) = NoHaySensor And espera < 30000
    WScript.Sleep 100
    espera = espera + 100
Loop
WScript.Sleep 1000

numero = 1
Set deposito = traza.Deposito(numero)
Do Until deposito Is Nothing
    Select Case traza.hayLecturaNivel(numero)
        Case LecturaDisponible
            WScript.Echo "Depósito " & numero & ": nivel " & traza.LecturaNivel(numero) & ", anotado: " & _
                SiNo(deposito.EntradaNivel(, traza.LecturaNivel(numero)))
        Case ErrorLectura
            WScript.Echo "Depósito " & numero & ": el sensor no responde"
        Case NoHaySensor
            WScript.Echo "Depósito " & numero & ": sin sensor"
    End Select
    numero = numero + 1
    Set deposito = traza.Deposito(numero)
Loop
traza.Cerrar

Function SiNo(valor)
    If valor Then SiNo = "sí" Else SiNo = "no"
End Function
