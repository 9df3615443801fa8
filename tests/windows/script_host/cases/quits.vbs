On Error Resume Next
WScript.Echo "before"
WScript.Quit 7
WScript.Echo "after"
