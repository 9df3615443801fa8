# Abre una almazara y muestra lo que hay en sus tolvas y depósitos.
#
#   powershell -File abrir.ps1 C:\Almazara
#
# La carpeta es la de la aplicación, donde están CLIEN.INI y Vardex.ini. PowerShell de 64 bits necesita
# la biblioteca de 64 bits; el de 32 está en C:\Windows\SysWOW64\WindowsPowerShell.
param([Parameter(Mandatory)] [string] $Carpeta)

function ConComa($valor) {
    if ($valor -is [DBNull]) { '-' } else { '{0:F1}' -f $valor }
}

# Constructor no falla si la base no se abre: hay que preguntar por BaseAbierta.
$traza = New-Object -ComObject Ambrelio.Trazabilidad
[void] $traza.Constructor($Carpeta, $false)
if (-not $traza.BaseAbierta()) {
    Write-Error 'No se puede abrir la base de datos de la almazara.'
    exit 1
}

for ($numero = 1; $numero -le $traza.MaximoTolvas(); $numero++) {
    $tolva = $traza.Tolva($numero)
    "Tolva ${numero}: descarga $($tolva.DescargaEnCurso), $($tolva.Partidas()) partidas, " +
        "$(ConComa $tolva.Acumulado()) kg"
}

# Deposito devuelve $null detrás del último.
for ($numero = 1; $deposito = $traza.Deposito($numero); $numero++) {
    "Depósito $numero ($($deposito.Nombre)): $(ConComa $deposito.LitrosActual()) litros, " +
        "$(ConComa $deposito.KilosActual()) kg"
}
$traza.Cerrar()
