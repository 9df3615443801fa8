' Walks over DAO's collections by For Each.
'
' argument: the database to make
Option Explicit
Dim engine, workspace, base, table, field, index, query
Set engine = CreateObject("DAO.DBEngine.36")
For Each workspace In engine.Workspaces
    Set base = workspace.CreateDatabase(WScript.Arguments(0), ";LANGID=0x0409;CP=1252;COUNTRY=0", 64)
Next
base.Execute "create table Olivares (Codigo long constraint Clave primary key, Paraje text(20))"
base.Execute "create table Fincas (Codigo long)"
base.CreateQueryDef "Parajes", "select Paraje from Olivares"
For Each table In base.TableDefs
    WScript.Echo table.Name
    For Each field In table.Fields
        WScript.Echo "  " & field.Name
    Next
    For Each index In table.Indexes
        WScript.Echo "  " & index.Name & " (" & index.Fields(0).Name & ")"
    Next
Next
For Each query In base.QueryDefs
    WScript.Echo query.Name
Next
