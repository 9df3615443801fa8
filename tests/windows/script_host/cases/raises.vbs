WScript.Echo "before"
If True Then
    Err.Raise 3061, "DAO.Database", "Too few parameters."
End If
WScript.Echo "after"
