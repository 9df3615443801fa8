' What scripts write and ask.
Option Explicit
Dim Año
Año = 2025
WScript.Echo "año", Año, True, 0.5, CLng(70000), ""
WScript.Echo WScript.ScriptName, WScript.Arguments.Count, WScript.Arguments(0), WScript.Arguments.Item(1)
WScript.Sleep 1
On Error Resume Next
WScript.Arguments.Item 2
WScript.Echo Err.Number
Err.Clear
WScript.CreateObject "No.Such"
WScript.Echo Err.Number
