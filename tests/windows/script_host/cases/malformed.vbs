WScript.Echo "before"
If Then
