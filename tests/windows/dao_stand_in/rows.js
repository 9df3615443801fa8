// Adds, changes and deletes rows in recordsets, as hosts do.
//
// argument: the database to make
var engine = new ActiveXObject("DAO.DBEngine.36");
var base = engine.Workspaces(0).CreateDatabase(WScript.Arguments(0), ";LANGID=0x0409;CP=1252;COUNTRY=0", 64);
base.Execute("create table Olivares (Codigo long constraint Clave primary key, Paraje text(20), Olivos long)");
var rows = base.OpenRecordset("Olivares");
rows.AddNew();
rows.Fields("Codigo").Value = 1;
rows.Fields("Paraje").Value = "Loma d'Arriba";
rows.Fields("Olivos").Value = 120;
rows.Update();
rows.AddNew();
rows.Fields("Codigo").Value = 2;
rows.Fields("Paraje").Value = "Vega";
rows.Update();
rows.Close();

rows = base.OpenRecordset("select * from Olivares order by Codigo");
rows.Edit();
rows.Fields("Olivos").Value = rows.Fields("Olivos").Value + 1;
rows.Update();
rows.MoveNext();
rows.Edit();
rows.Fields("Paraje").Value = "Cerro";
rows.CancelUpdate();
showRows();
rows.MoveFirst();
rows.Delete();
rows.Close();
rows = base.OpenRecordset("Olivares");
showRows();

function showRows() {
    rows.MoveFirst();
    while (!rows.EOF) {
        var trees = rows.Fields("Olivos").Value;
        WScript.Echo(rows.Fields("Codigo").Value + " " + rows.Fields("Paraje").Value + " " + (trees === null ? "" : trees));
        rows.MoveNext();
    }
}
