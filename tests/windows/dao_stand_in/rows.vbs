' Adds, changes and deletes rows in recordsets, as hosts do.
'
' argument: the database to make
Option Explicit
Dim engine, base, rows
Set engine = CreateObject("DAO.DBEngine.36")
Set base = engine.Workspaces(0).CreateDatabase(WScript.Arguments(0), ";LANGID=0x0409;CP=1252;COUNTRY=0", 64)
base.Execute "create table Olivares (Codigo long constraint Clave primary key, Paraje text(20), Olivos long)"
Set rows = base.OpenRecordset("Olivares")
rows.AddNew
rows("Codigo") = 1
rows.Fields("Paraje") = "Loma d'Arriba"
rows("Olivos") = 120
rows.Update
rows.AddNew
rows("Codigo").Value = 2
rows.Fields("Paraje").Value = "Vega"
rows.Update
rows.Close

Set rows = base.OpenRecordset("select * from Olivares order by Codigo")
rows.Edit
rows("Olivos") = rows("Olivos") + 1
rows.Update
rows.MoveNext
rows.Edit
rows("Paraje") = "Cerro"
rows.CancelUpdate
ShowRows
rows.MoveFirst
rows.Delete
rows.Close
Set rows = base.OpenRecordset("Olivares")
ShowRows

Sub ShowRows()
    rows.MoveFirst
    Do Until rows.EOF
        WScript.Echo rows("Codigo") & " " & rows("Paraje") & " " & rows("Olivos")
        rows.MoveNext
    Loop
End Sub
