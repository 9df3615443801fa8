// Walks over DAO's collections by Enumerator.
//
// argument: the database to make
function each(collection, action) {
    for (var all = new Enumerator(collection); !all.atEnd(); all.moveNext()) action(all.item());
}

var base;
each(new ActiveXObject("DAO.DBEngine.36").Workspaces, function (workspace) {
    base = workspace.CreateDatabase(WScript.Arguments(0), ";LANGID=0x0409;CP=1252;COUNTRY=0", 64);
});
base.Execute("create table Olivares (Codigo long constraint Clave primary key, Paraje text(20))");
base.Execute("create table Fincas (Codigo long)");
base.CreateQueryDef("Parajes", "select Paraje from Olivares");
each(base.TableDefs, function (table) {
    WScript.Echo(table.Name);
    each(table.Fields, function (field) { WScript.Echo("  " + field.Name); });
    each(table.Indexes, function (index) { WScript.Echo("  " + index.Name + " (" + index.Fields(0).Name + ")"); });
});
each(base.QueryDefs, function (query) { WScript.Echo(query.Name); });
